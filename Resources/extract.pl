#!/usr/bin/perl
# Tells the metadata of files. Standard input is a path a line; each is answered by lines of the form
#     {extracted-key}:KEY
#     VALUE
# then by an empty key and the end marker. Where nothing could be read of a file, there is instead a line
#     {extracted-failure}:REASON
# A line feed within a value begins a further value line. Keys that
# occur several times come as "KEY (3)" to "KEY (1)" and last as "KEY", since the reader keeps the later value.
# Whatever a file holds, its answer stays one answer: the markers are broken up wherever they occur in a value.
use strict;
use warnings;

# The library's file of user settings is code; it is never run.
BEGIN {
    no warnings 'once';
    $Image::ExifTool::configFile = '';
}

# Why the library is not to be had, if so.
my $has_library = eval { require Image::ExifTool; 1 };
my $no_library = $@ =~ m{^Can't locate Image/ExifTool\.pm}
    ? "Image::ExifTool is missing (Debian's package libimage-exiftool-perl)"
    : "Image::ExifTool cannot be loaded: $@";

use constant {
    SECONDS_PER_FILE => 30,
    VALUE_BYTES      => 4096,
    ANSWER_BYTES     => 1 << 20,
};

# What names the path or the library instead of telling of the file.
my %left_out = map { $_ => 1 } qw(FileName Directory SourceFile ExifToolVersion Error Warning);

# The keys that are asked for. A key that the library doesn't give is made of the first of the others that it
# does give.
my %stand_ins = (
    image => {
        BitDepth        => [qw(BitsPerSample BitDepthLuma ImagePixelDepth BitsPerComponent BitsPerPixel)],
        ColorMode       => [qw(PhotometricInterpretation ColorType)],
        ColorComponents => [qw(SamplesPerPixel NumberOfComponents)],
        Lens            => [qw(LensID LensModel LensInfo LensType)],
    },
    media => {
        VideoFrameRate => [qw(FrameRate)],
        CompressorID   => [qw(VideoCodecID VideoCodec CodecID)],
        CompressorName => [qw(VideoCodecName CodecName)],
        Title          => [qw(Name SongName)],
        Artist         => [qw(Author AlbumArtist Albumartist Band Performer)],
        Album          => [qw(AlbumTitle)],
        Year           => [qw(Date RecordingTime ContentCreateDate DateCreated OriginalReleaseTime)],
        TrackNumber    => [qw(PartNumber)],
        DiskNumber     => [qw(Discnumber DiscNumber Disc)],
    },
);
my %totals = (
    TrackNumber => [qw(Tracktotal Totaltracks TrackTotal TotalTracks TotalParts)],
    DiskNumber  => [qw(Disctotal Totaldiscs DiscTotal TotalDiscs)],
);
my %part_of = (
    BitDepth   => qr/^\s*(\d+)/,
    Year       => qr/^\s*(\d{4})/,
    CompressorID => qr/^(?!A_|S_)(.+)/,
);
my %asked_for = map { $_ => 1 } (
    'Duration#',
    qw(ImageWidth ImageHeight BitDepth ColorMode VideoFrameRate CompressorID CompressorName
       GPSImgDirection GPSImgDirectionRef GPSAltitude GPSAltitudeRef GPSLongitude GPSLongitudeRef GPSLatitude
       GPSLatitudeRef GPSPosition Aperture ShutterSpeed ExposureTime ISO Make Model Lens LensModel
       ColorComponents ColorSpace ExifImageWidth ExifImageHeight FocusMode AutoFocus ShutterCount
       SubSecTimeOriginal Artist Album Title Year TrackNumber Track DiskNumber PartOfSet)
);

# The beginning of a text in UTF-8, cut between two characters.
sub cut {
    my ($bytes, $limit) = @_;
    return $bytes if length $bytes <= $limit;
    for (1 .. 3) {
        last if (ord(substr $bytes, $limit, 1) & 0xC0) != 0x80;
        --$limit;
    }
    return substr $bytes, 0, $limit;
}

# A value as text in UTF-8 that breaks no answer; undefined for what is no text.
sub clean {
    my ($value) = @_;
    $value = join ', ', grep { !ref } @$value if ref $value eq 'ARRAY';
    return if !defined $value || ref $value;
    return $value if length $value <= VALUE_BYTES && $value !~ /[^\x20-\x7e]|---f|\{e/;

    utf8::encode($value) if utf8::is_utf8($value);
    my $text = $value = cut($value, 4 * VALUE_BYTES);
    if (!utf8::decode($text)) {
        require Encode;
        $text = Encode::decode('cp1252', $value);
    }
    no warnings 'utf8';
    $text =~ s/\r\n?/\n/g;
    $text =~ s/[\x00-\x09\x0b-\x1f\x7f\x{85}\x{2028}\x{2029}]+/ /g;
    $text =~ s/[\x{d800}-\x{dfff}]|[^\x{0}-\x{10ffff}]/\x{fffd}/g;
    $text =~ s/---(?=finished---)/- - /g;
    $text =~ s/\{extracted-key\}(?=:)/{extracted-key} /g;
    utf8::encode($text);
    return cut($text, VALUE_BYTES);
}

sub read_at {
    my ($file, $position, $length) = @_;
    my $bytes = '';
    seek $file, $position, 0 and read $file, $bytes, $length;
    return $bytes;
}

# Seconds of an Ogg file: the position that the last page of its Vorbis or Opus stream tells.
sub ogg_seconds {
    my ($file) = @_;
    my $head = read_at($file, 0, 8192);
    my ($serial, $rate, $skipped) = (undef, 0, 0);
    while ($head =~ /OggS.\x02.{8}(.{4}).{8}/gs) {
        ($serial, my $start) = ($1, pos $head);
        my $identity = substr $head, $start, 64;
        if ($identity =~ /\x01vorbis.{5}(.{4})/s) {
            $rate = unpack 'V', $1;
        } elsif ($identity =~ /OpusHead.{2}(.{2})/s) {
            ($rate, $skipped) = (48000, unpack 'v', $1);
        }
        last if $rate;
    }
    return if !$rate;

    my $size = -s $file;
    my $tail = read_at($file, $size > 131072 ? $size - 131072 : 0, 131072);
    my $page = length $tail;
    while ($page > 0 && ($page = rindex $tail, 'OggS', $page - 1) >= 0) {
        my ($low, $high, $owner) = unpack 'x6 V V a4', substr($tail, $page, 18) . "\0" x 18;
        next if $owner ne $serial || $high >= 1 << 31;
        my $samples = $high * 2**32 + $low - $skipped;
        return $samples > 0 ? $samples / $rate : undef;
    }
    return;
}

# Seconds of an MP3 file: its number of frames, which an encoder tells in place of the first frame's sound.
sub mp3_seconds {
    my ($file) = @_;
    my $start = 0;
    while (read_at($file, $start, 10) =~ /^ID3..(.)([\x00-\x7f])([\x00-\x7f])([\x00-\x7f])([\x00-\x7f])/s) {
        my $footer = ord($1) & 0x10 ? 10 : 0;
        $start += 10 + $footer + (ord($2) << 21 | ord($3) << 14 | ord($4) << 7 | ord $5);
    }
    my $head = read_at($file, $start, 8192);
    my ($frame) = $head =~ /(\xff[\xe2\xe3\xf2\xf3\xfa\xfb].{198})/s or return;
    my ($version, $channels) = ((ord(substr $frame, 1) >> 3) & 3, ord(substr $frame, 3) >> 6);
    my $rate = (44100, 48000, 32000)[(ord(substr $frame, 2) >> 2) & 3] or return;
    my $is_first_version = $version == 3;
    $rate /= $is_first_version ? 1 : $version == 2 ? 2 : 4;
    my $side = $is_first_version ? ($channels == 3 ? 17 : 32) : ($channels == 3 ? 9 : 17);
    my $frames;
    if (substr($frame, 4 + $side, 8) =~ /^(?:Xing|Info)...[\x01\x03\x05\x07\x09\x0b\x0d\x0f]/s) {
        $frames = unpack 'N', substr $frame, 12 + $side, 4;
    } elsif (substr($frame, 36, 4) eq 'VBRI') {
        $frames = unpack 'N', substr $frame, 50, 4;
    }
    return $frames ? $frames * ($is_first_version ? 1152 : 576) / $rate : undef;
}

# Seconds as the library tells them, as a number.
sub told_seconds {
    my ($tool, $info) = @_;
    my @values = map { $tool->GetValue($_, 'ValueConv') }
        grep { exists $$info{$_} } 'Duration', 'Duration (1)', 'Duration (2)', 'Duration (3)', 'PlayDuration';
    for my $value (@values) {
        return $value if defined $value && !ref $value && $value =~ /^\d+(?:\.\d+)?(?:e-?\d+)?$/;
    }
    for my $value (@values) {
        return $1 * 3600 + $2 * 60 + $3
            if defined $value && $value =~ /^(\d+):(\d\d?):(\d\d?(?:\.\d+)?)$/;
    }
    return;
}

# The library guesses from the bit rate what these files tell exactly.
my %seconds_of = (OGG => \&ogg_seconds, OGA => \&ogg_seconds, OPUS => \&ogg_seconds, MP3 => \&mp3_seconds);

sub seconds {
    my ($tool, $info, $path) = @_;
    my $seconds;
    my $compute = $seconds_of{$$info{FileType} // ''};
    if ($compute && open my $file, '<:raw', $path) {
        $seconds = $compute->($file);
    }
    $seconds //= told_seconds($tool, $info);
    return if !defined $seconds;
    return $seconds =~ /e/ ? 0 : 0 + sprintf '%.3f', $seconds;
}

# The first of these keys that has a value, as far as the pattern takes it.
sub first_of {
    my ($info, $pattern, @keys) = @_;
    for my $key (map { ($_, "$_ (1)", "$_ (2)", "$_ (3)") } @keys) {
        my $value = clean($$info{$key});
        next if !defined $value;
        return $1 if $value =~ $pattern;
    }
    return;
}

# Adds what the library tells under other names, or not at all.
sub complete {
    my ($tool, $info, $path) = @_;
    my $kind = $$info{MIMEType} // '';
    my $is_media = $kind =~ /^(?:audio|video|application\/(?:ogg|vnd\.rn-realmedia))/;
    if (($$info{FileType} // '') =~ /^(?:MK[VA3S]|MKS|WEBM)/) {
        # The number of a stream.
        delete @$info{'TrackNumber', map { "TrackNumber ($_)" } 1 .. 3};
    }
    my $missing = $stand_ins{$is_media ? 'media' : 'image'};
    for my $key (keys %$missing) {
        next if ref $$info{$key} || length($$info{$key} // '');
        my $value = first_of($info, $part_of{$key} // qr/(.*\S.*)/s, @{$$missing{$key}});
        $$info{$key} = $value if defined $value;
    }
    return if !$is_media;
    for my $key (keys %totals) {
        my $number = $$info{$key} // '';
        next if ref $number || $number !~ /^\s*\d+\s*$/;
        my $total = first_of($info, qr/^\s*(\d+)/, @{$totals{$key}});
        $$info{$key} = "$number of $total" if defined $total;
    }
    my $seconds = seconds($tool, $info, $path);
    $$info{'Duration#'} = $seconds if defined $seconds;
}

# The lines of one key, or nothing.
sub lines {
    my ($key, $value) = @_;
    my $text = clean($value);
    return defined $text ? "{extracted-key}:$key\n$text\n" : '';
}

sub failure {
    my ($reason) = @_;
    $reason =~ s/\s+/ /g;
    $reason =~ s/ $//;
    return "{extracted-failure}:$reason\n";
}

sub answer {
    my ($tool, $path) = @_;
    return failure($no_library) if !$has_library;
    return '' if $path !~ m{^/};
    return $!{ENOENT} || $!{ENOTDIR} ? '' : failure($!) if !-e $path;
    return '' if !(-f _ || -d _);
    return failure($!) if -f _ && !open my $readable, '<:raw', $path;
    my $info = $tool->ImageInfo($path);
    complete($tool, $info, $path);
    my (@repeated, @single, @wanted);
    for my $key (keys %$info) {
        if ($key =~ /^([A-Za-z0-9][\w:.-]*) \(([1-3])\)$/ && $key !~ /--/ && length $key < 200) {
            # A total of one tag is no total of another tag's number.
            push @repeated, [$2, $key] if !$left_out{$1} && $1 !~ /^(?:Track|TrackNumber|DiskNumber|PartOfSet)$/;
        } elsif ($asked_for{$key}) {
            push @wanted, $key;
        } elsif ($key =~ /^[A-Za-z0-9][\w:.-]*$/ && $key !~ /--/ && length $key < 200) {
            push @single, $key if !$left_out{$key};
        }
    }
    my $text = '';
    for my $key ((map { $$_[1] } sort { $$b[0] <=> $$a[0] } @repeated), @single) {
        last if length $text > ANSWER_BYTES;
        $text .= lines($key, $$info{$key});
    }
    $text .= lines($_, $$info{$_}) for @wanted;
    return $text;
}

sub new_tool {
    return if !$has_library;
    my $tool = Image::ExifTool->new;
    $tool->Options(Duplicates => 1, LargeFileSupport => 1);
    return $tool;
}

# The library gets neither the requests nor the answers into its hands.
open my $requests, '<&', \*STDIN or die "no standard input: $!\n";
open my $answers, '>&', \*STDOUT or die "no standard output: $!\n";
open STDIN, '<', '/dev/null' or die "/dev/null: $!\n";
open STDOUT, '>', '/dev/null' or die "/dev/null: $!\n";
binmode $requests;
binmode $answers;
$answers->autoflush(1);
local $SIG{__WARN__} = sub { };

use constant END_OF_ANSWER => "{extracted-key}:\n---finished---\n";

# Ends this program with the answer, since the library would catch whatever else stopped it. It is started anew.
local $SIG{ALRM} = sub {
    print $answers failure('it took longer than ' . SECONDS_PER_FILE . ' seconds') . END_OF_ANSWER;
    exit 0;
};

my $reader = new_tool();
while (defined(my $path = <$requests>)) {
    chomp $path;
    alarm SECONDS_PER_FILE;
    my $text = eval { answer($reader, $path) };
    alarm 0;
    if (!defined $text) {
        $text = failure("Image::ExifTool failed: $@");
        $reader = new_tool();
    }
    print $answers $text . END_OF_ANSWER or last;
}
