#!/bin/bash
# The demo as its user meets it: good recordings give two whole files, anything else gives one sentence on stderr, a
# failing exit status and no file.
#   test_demo.sh <path of kels-demo>
set -u
demo=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

complain() {
    echo "FAILED: $1"
    sed 's/^/    /' stdout stderr
    failures=$((failures + 1))
}

# succeeds <what> <arguments...>
succeeds() {
    local what=$1
    shift
    rm -rf out
    if ! "$demo" --out out "$@" >stdout 2>stderr; then complain "$what: exit status"
    elif [ -s stderr ]; then complain "$what: a message"
    elif [ "$(ls -A out | wc -l)" != 2 ]; then complain "$what: one WAV and one PNG expected, found: $(ls -A out)"
    elif [ "$(head -c 4 out/*-filtered.wav)" != RIFF ]; then complain "$what: no WAV"
    elif ! head -c 4 out/*-spectrum.png | grep -q PNG; then complain "$what: no PNG"
    fi
}

# refuses <what> <words of the sentence> <arguments...>
refuses() {
    local what=$1 words=$2 status
    shift 2
    rm -rf out
    PATH=${demo_path-$PATH} "$demo" --out "${out-out}" "$@" >stdout 2>stderr
    status=$?
    if [ $status != 1 ]; then complain "$what: exit status $status"
    elif [ "$(wc -l <stderr)" != 1 ]; then complain "$what: not one sentence"
    elif ! grep -qi -- "$words" stderr; then complain "$what: the sentence does not say '$words'"
    elif [ -e out ]; then complain "$what: left $(ls -A out) behind"
    fi
}

# wav <rate> <channels> <frames> <expression of the frame number $n and the channel $c, full scale being 1>
wav() {
    perl -e '
        my ($rate, $channels, $frames, $sample) = @ARGV;
        my $at = eval "sub { my (\$n, \$c) = \@_; $sample }" or die $@;
        my $data = "";
        for my $n (0 .. $frames - 1) { $data .= pack("s<", 32767 * $at->($n, $_)) for 0 .. $channels - 1 }
        my $format = pack("vvVVvv", 1, $channels, $rate, $rate * $channels * 2, $channels * 2, 16);
        print "RIFF", pack("V", 36 + length $data), "WAVEfmt ", pack("V", 16), $format, "data", pack("V", length $data), $data;
    ' "$@"
}

# rms_of <16-bit WAV with two channels> <channel>: of the second half, after the filter has settled
rms_of() {
    perl -e '
        local $/; binmode STDIN;
        my ($data) = <STDIN> =~ /data.{4}(.*)/s;
        my @samples = unpack("s<*", $data);
        my ($sum, $count) = (0, 0);
        for (my $i = $#samples / 2 & ~1; $i + 1 <= $#samples; $i += 2) { $sum += ($samples[$i + $ARGV[0]] / 32768) ** 2; $count++ }
        printf "%.4f\n", sqrt($sum / $count);
    ' "$2" <"$1"
}

# One channel inside the band, one outside: neither leaks into the other.
wav 44100 2 30000 '0.5 * sin(2 * 3.14159265358979 * ($c ? 10000 : 1000) * $n / 44100)' >stereo.wav
wav 48000 1 1 '0.25' >one-sample.wav
wav 8000 1 8000 '0' >silence.wav
cp silence.wav tone
wav 4000 1 4000 '0.1' >low-rate.wav
wav 48000 1 0 '0' >no-samples.wav
head -c 20000 stereo.wav >cut-short.wav
: >empty.wav
echo "This is a text, not a recording." >text.wav
: >file

succeeds "the default recording"
succeeds "a stereo recording" --input stereo.wav
[ "$(od -An -tu2 -j22 -N2 out/stereo-filtered.wav)" -eq 2 ] || complain "stereo: not two channels"
[ "$(od -An -tu4 -j24 -N4 out/stereo-filtered.wav)" -eq 44100 ] || complain "stereo: another sampling rate"
[ "$(rms_of out/stereo-filtered.wav 0)" = 0.3535 ] || complain "stereo: the tone inside the band has changed"
[ "$(rms_of out/stereo-filtered.wav 1)" = 0.0000 ] || complain "stereo: the tone outside the band is still there"
succeeds "a recording of one sample" --input one-sample.wav
succeeds "a silent recording" --input silence.wav --high 4000
succeeds "a recording that is cut short" --input cut-short.wav
succeeds "a low-pass" --input stereo.wav --low 0 --high 2000 --taps 31
succeeds "two samples for three" --input stereo.wav --up 2 --down 3
[ "$(od -An -tu4 -j24 -N4 out/stereo-filtered.wav)" -eq 29400 ] || complain "resampling: not two thirds of the rate"
rms=$(rms_of out/stereo-filtered.wav 0)
case $rms in 0.353[4567]) ;; *) complain "resampling: the tone inside the band has changed: $rms" ;; esac
grep -q "Speed .*, [0-9.]* ns a sample" stdout || complain "resampling: no cost told"
succeeds "three samples for one" --input stereo.wav --up 3
succeeds "a resampled recording of one sample" --input one-sample.wav --up 3 --down 4
succeeds "a tone" --input tone
grep -q "Before *RMS *-9.0 dBFS, peak *-6.0 dBFS" stdout || complain "tone: another level"
grep -q "After *RMS *-9.0 dBFS" stdout || complain "tone: the band holds it, but its level has changed"
succeeds "a sweep" --input sweep
succeeds "noise" --input noise
grep -q "Before *RMS *-10.8 dBFS, peak *-6.0 dBFS" stdout || complain "noise: another level"
succeeds "a file named like a signal" --input ./tone
grep -q "Before *silent" stdout || complain "./tone: not the file"
refuses "a signal of no such name" "tone, sweep and noise" --input tune
refuses "a band above half the rate of a signal" "at most 24000 Hz" --input sweep --high 24001
while read -r low high order; do
    succeeds "biquads of order $order from $low to $high Hz" --input stereo.wav --low "$low" --high "$high" --biquads "$order"
    grep -q "Biquads .* order $order" stdout || complain "biquads: not told"
done <<'BANDS'
300 3400 4
300 3400 5
0 3400 5
3000 22050 1
0 22050 4
BANDS
refuses "biquads of no order" "from 1 to" --biquads 0
refuses "biquads at another rate" "own rate" --biquads 4 --up 2
refuses "a rate that is no whole number" "not possible" --input stereo.wav --down 99 --high 200
refuses "a factor below 1" "from 1 to" --up 0
refuses "a band above half the new rate" "at most 2000 Hz" --input silence.wav --down 2

refuses "a missing file" "does not exist" --input missing.wav
refuses "a directory" "is a directory" --input .
refuses "a device" "not a regular file" --input /dev/zero
refuses "an empty file" "is not a recording" --input empty.wav
refuses "a text" "is not a recording" --input text.wav
refuses "a WAV without samples" "no samples" --input no-samples.wav
refuses "edges in the wrong order" "not possible" --low 2000 --high 1000
refuses "an empty band" "not possible" --low 1000 --high 1000
refuses "a negative edge" "not possible" --low -100
refuses "an edge above half the rate" "at most 24000 Hz" --high 30000
refuses "the default band at a low rate" "at most 2000 Hz" --input low-rate.wav
refuses "an edge that is no number" "not possible" --low nan
refuses "no taps" "odd number" --taps 0
refuses "an even number of taps" "odd number" --taps 512
refuses "too few taps" "odd number" --taps 1
refuses "too many taps" "odd number" --taps 1000001
refuses "taps that are no number" "--taps" --taps many
refuses "an unknown option" "--volume" --volume 11
out=file refuses "a file as the directory" "cannot be used"
demo_path=/nonexistent refuses "no gnuplot" "gnuplot-nox"
XDG_DATA_DIRS=/nonexistent refuses "no default recording" "alsa-utils"
[ -s file ] && complain "the file in the place of the directory was written"

[ $failures = 0 ] && echo "demo: all as expected"
exit $((failures > 0))
