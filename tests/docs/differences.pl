# Runs every line of the table "Where this differs from Perl" in the guide named on the command line:
# the column "Perl" must say what this perl does.
use strict;
use warnings;
use utf8;
use open qw(:std :utf8);

my ($rows, $wrong, $inTable) = (0, 0, 0);
open(my $guide, '<:utf8', $ARGV[0]) or die "$ARGV[0]: $!\n";
while (my $line = <$guide>) {
    $inTable ||= $line =~ /^## Where this differs from Perl/;
    next unless $inTable && $line =~ /^\| /;
    $line =~ s/^\|//;
    my @cells = map { s/\\\|/|/gr } split /(?<!\\)\|/, $line;
    s/^ *| *$//g for @cells;
    next if $cells[0] eq 'What';
    my ($pattern, $options, $subject, $expected) = @cells[1 .. 4];
    s/^`(.*)`$/$1/ for $pattern, $subject;
    for ($subject, $expected) {
        s/\\n/\n/g;
        s/\\x(..)/chr hex $1/ge;
    }
    my $all = $options =~ s/g//;
    my @found = eval {
        no warnings;
        my $compiled = $options eq '' ? qr/$pattern/u : eval "qr/\$pattern/$options" // die $@;
        return $subject =~ /$compiled/g if $all;
        return $subject =~ $compiled ? ($&) : ();
    };
    my $actual = $@ ? 'error' : @found ? join(' ', map { $_ eq '' ? '`""`' : "`$_`" } @found) : 'no match';
    ++$rows;
    next if $actual eq $expected;
    ++$wrong;
    print "$pattern on '$subject': perl gives $actual, the guide says $expected\n";
    print "  $@" if $@;
}
print "$rows lines\n";
exit($wrong > 0 || $rows < 30);
