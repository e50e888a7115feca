# What a transcript of the line tells of a file: crossing.pl TRANSCRIPT ab|ba FIRST_TEXT LAST_TEXT
# Prints the seconds from the arrival of the first text's first byte to that of the last text's last byte, and how many
# ZModem positions (ZRPOS) the other direction told.
use strict;
use warnings;

my ($transcript, $direction, $first, $last) = @ARGV;
my $arrow = $direction eq 'ab' ? 'a>b' : 'b>a';
my ($forth, $back) = ('', '');
my (@ends, @times); # where the pieces end, and when they came

open my $lines, '<', $transcript or die "$transcript: $!\n";
while (my $line = <$lines>) {
    my ($time, $way, $hex) = $line =~ /^([\d.]+) (a>b|b>a) ([^|]*)\|/ or next;
    $hex =~ tr/ //d;
    if ($way ne $arrow) {
        $back .= pack 'H*', $hex;
        next;
    }
    $forth .= pack 'H*', $hex;
    push @ends, length $forth;
    push @times, $time;
}

sub time_of {
    my ($position) = @_;
    my ($low, $high) = (0, $#ends);
    while ($low < $high) {
        my $middle = int(($low + $high) / 2);
        if ($ends[$middle] > $position) { $high = $middle } else { $low = $middle + 1 }
    }
    return $times[$low];
}

# The last text may lie in two packets: then what the last one has of it.
my $begin = index $forth, $first;
my $end = -1;
for (; length $last > 1; $last = substr $last, 1) {
    $end = rindex $forth, $last;
    last if $end > length($forth) / 2;
}
die "the file's first and last bytes did not cross\n" if $begin < 0 || $end <= $begin || length $last < 2;
my $positions = () = $back =~ /\x18B09/g;
printf "seconds %.4f positions %d\n", (time_of($end + length($last) - 1) - time_of($begin)) / 1000, $positions;
