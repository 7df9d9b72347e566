# Reads cases, one a line: number, options, and pattern and text in hexadecimal. Prints the number and the
# span of the whole match, as the C++ side does.
use strict;
use warnings;
no warnings 'regexp';

while (my $line = <STDIN>) {
    chomp $line;
    my ($number, $options, $hexPattern, $hexText) = split /,/, $line, -1;
    my $pattern = pack 'H*', $hexPattern;
    my $text    = pack 'H*', $hexText;
    my $compiled = eval { qr/(?^aa$options:$pattern)/ };
    if (!defined $compiled) {
        print "$number error\n";
    } elsif ($text =~ $compiled) {
        print "$number [$-[0],", $+[0] - $-[0], "]\n";
    } else {
        print "$number no match\n";
    }
}
