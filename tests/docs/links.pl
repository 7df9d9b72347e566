# Follows every link between the documents named on the command line: the file must be there, and so
# must the heading behind a "#".
use strict;
use warnings;
use utf8;
use File::Basename;

sub slug {
    my ($heading) = @_;
    $heading =~ s/[`*]//g;
    $heading = lc $heading;
    $heading =~ s/[^\w\- ]//g;
    return $heading =~ s/ /-/gr;
}

sub headings {
    my ($file) = @_;
    open(my $in, '<:utf8', $file) or die "$file: $!\n";
    my %slugs = map { /^#+ (.*)$/ ? (slug($1) => 1) : () } <$in>;
    return \%slugs;
}

my ($links, $broken) = (0, 0);
for my $file (@ARGV) {
    open(my $in, '<:utf8', $file) or die "$file: $!\n";
    my $fenced = 0;
    while (my $line = <$in>) {
        $fenced = !$fenced if $line =~ /^```/;
        next if $fenced;
        while ($line =~ /\]\(([^)\s]+)\)/g) {
            my ($path, $anchor) = split /#/, $1, 2;
            next if $path =~ /^[a-z]+:/;
            ++$links;
            my $target = $path eq '' ? $file : dirname($file) . "/$path";
            next if -e $target && (!defined $anchor || headings($target)->{$anchor});
            ++$broken;
            print "$file:$.: $path" . (defined $anchor ? "#$anchor" : '') . " leads nowhere\n";
        }
    }
}
print "$links links\n";
exit($broken > 0 || $links == 0);
