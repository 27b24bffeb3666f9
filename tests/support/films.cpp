#include "films.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>

#include <array>

namespace
{

/// How one film is made. @p arguments are ffmpeg's between the input and the output; SOURCE stands for the common
/// picture and sound.
struct Recipe {
    const char* name;
    const char* inputs;
    const char* arguments;
};

constexpr const char* from_source = "-i SOURCE";

constexpr const char* x264 = "-c:v libx264 -preset ultrafast -g 25 -bf 2 -pix_fmt yuv420p";

// clang-format off
constexpr std::array<Recipe, 32> recipes = {{
    {"h264.mp4",         from_source, "X264 -c:a aac -ac 2"},
    {"h264.mkv",         from_source, "X264 -c:a aac -ac 2"},
    {"h264.ts",          from_source, "X264 -c:a aac -ac 2 -f mpegts"},
    {"mpeg4.avi",        from_source, "-c:v mpeg4 -q:v 4 -g 25 -c:a libmp3lame"},
    {"xvid.avi",         from_source, "-c:v mpeg4 -vtag XVID -q:v 4 -g 25 -c:a libmp3lame"},
    {"wmv2.asf",         from_source, "-c:v wmv2 -q:v 4 -g 25 -c:a wmav2 -f asf"},
    {"wmv1.wmv",         from_source, "-c:v wmv1 -q:v 4 -g 25 -c:a wmav2 -f asf"},
    {"wmv2_640x360.wmv", from_source, "-t 2 -vf scale=640:360 -c:v wmv2 -q:v 4 -g 25 -c:a wmav2 -f asf"},
    {"msmpeg4v2.avi",    from_source, "-c:v msmpeg4v2 -q:v 4 -g 25 -c:a libmp3lame"},
    {"msmpeg4v3.avi",    from_source, "-c:v msmpeg4 -q:v 4 -g 25 -c:a libmp3lame"},
    {"mpeg1.mpg",        from_source, "-c:v mpeg1video -q:v 4 -g 25 -c:a mp2 -f mpeg"},
    {"vp9.webm",         from_source, "-t 3 -c:v libvpx-vp9 -deadline realtime -cpu-used 8 -b:v 300k -g 25 -c:a libopus"},
    {"theora.ogg",       from_source, "-c:v libtheora -q:v 4 -g 25 -c:a libvorbis -f ogg"},
    {"video_only.mp4",   from_source, "X264 -an"},
    {"sound_only.m4a",   from_source, "-vn -c:a aac"},
    {"two_sounds.mkv",   "-i SOURCE -f lavfi -i sine=frequency=880:duration=6", "-map 0:v -map 0:a -map 1:a X264 -c:a aac"},
    {"surround.mkv",     "-i SOURCE -f lavfi -i anoisesrc=duration=6:amplitude=0.1", "-map 0:v -map 1:a X264 -c:a ac3 -ac 6"},
    {"subtitles.mkv",    "-i SOURCE -i KOREAN -i ENGLISH", "-map 0:v -map 0:a -map 1 -map 2 X264 -c:a aac -c:s srt "
                         "-metadata:s:s:0 language=kor -metadata:s:s:1 language=eng"},
    {"anamorphic.mp4",   from_source, "-t 2 -vf setsar=2/1 X264 -c:a aac"},
    {"rotated.mp4",      "-i FILM", "-t 2 -c copy -metadata:s:v:0 rotate=90"},
    {"one_key_frame.mp4", from_source, "-c:v libx264 -preset ultrafast -g 9999 -keyint_min 9999 -sc_threshold 0 -pix_fmt yuv420p -c:a aac"},
    {"variable_rate.mkv", from_source, "-vf select=not(mod(n\\,7)*mod(n\\,5)) -vsync vfr X264 -c:a aac"},
    {"late_start.mkv",   "-itsoffset 2 -i SOURCE -i SOURCE", "-map 0:v -map 1:a X264 -c:a aac"},
    {"offset.ts",        from_source, "X264 -c:a aac -output_ts_offset 3600 -f mpegts"},
    {"tiny.mkv",         "-f lavfi -i color=red:size=2x2:rate=25:duration=2", "-vf format=bgr0,crop=1:1:exact=1 -c:v ffv1"},
    {"huge_still.mkv",   "-f lavfi -i color=blue:size=7680x4320:rate=1:duration=1", "-c:v mjpeg -pix_fmt yuvj420p"},
    {"many_sounds.mkv",  from_source, "-t 2 -map 0:v MAPS X264 -c:a libmp3lame"},
    {"unknown_length.mkv", from_source, "X264 -c:a aac -live 1"},
    {"long_sound.mkv",   "-t 2 -i SOURCE -t 3 -i SOURCE", "-map 0:v -map 1:a X264 -c:a aac"},
    {"palette.mkv",      "-f lavfi -i color=red:size=480x272:rate=25:duration=2", "-c:v png -pix_fmt pal8"},
    {"patches.mkv",      "-f lavfi -i color=0x646464:size=640x480:rate=25:duration=2",
                         "-vf drawbox=x=320:y=0:w=320:h=240:color=0x9c9c9c:t=fill,drawbox=x=0:y=240:w=640:h=240:color=0x008000:t=fill "
                         "-c:v ffv1 -pix_fmt yuv420p"},
    {"minute.mp4",       "-stream_loop 9 -i SOURCE", "X264 -c:a aac"},
}};
// clang-format on

QDir directory()
{
    QDir films(QStringLiteral(TAVEL_FILMS_DIR));
    if (!films.mkpath(QStringLiteral(".")))
        qFatal("cannot make %s", TAVEL_FILMS_DIR);
    return films;
}

void run_ffmpeg(const QStringList& arguments)
{
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::MergedChannels);
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-nostdin"),
                             QStringLiteral("-y"), QStringLiteral("-fflags"), QStringLiteral("+bitexact")} +
                     arguments);
    if (!ffmpeg.waitForFinished(120000) || ffmpeg.exitStatus() != QProcess::NormalExit || ffmpeg.exitCode() != 0)
        qFatal("ffmpeg %s: %s", qPrintable(arguments.join(u' ')), ffmpeg.readAll().constData());
}

/// A file that either is not there or is whole, whatever is interrupted.
QString made_once(const QString& name, const std::function<void(const QString& unfinished)>& make)
{
    const QDir films = directory();
    const QString finished = films.filePath(name);
    if (QFileInfo::exists(finished))
        return finished;
    QLockFile lock(films.filePath(QStringLiteral(".") + name + QStringLiteral(".lock")));
    lock.setStaleLockTime(0);
    if (!lock.lock())
        qFatal("cannot lock %s", qPrintable(finished));
    if (QFileInfo::exists(finished))
        return finished;
    const QString unfinished = films.filePath(QStringLiteral("unfinished_") + name);
    make(unfinished);
    if (!QFile::rename(unfinished, finished))
        qFatal("cannot rename %s", qPrintable(unfinished));
    return finished;
}

QString source()
{
    return made_once(QStringLiteral("source.mkv"), [](const QString& unfinished) {
        run_ffmpeg(
            {QStringLiteral("-f"),
             QStringLiteral("lavfi"),
             QStringLiteral("-i"),
             QStringLiteral("testsrc2=size=480x204:rate=25:duration=6"),
             QStringLiteral("-f"),
             QStringLiteral("lavfi"),
             QStringLiteral("-i"),
             QStringLiteral("color=black:size=480x68:rate=25:duration=6"),
             QStringLiteral("-f"),
             QStringLiteral("lavfi"),
             QStringLiteral("-i"),
             QStringLiteral("sine=frequency=440:sample_rate=48000:duration=6"),
             QStringLiteral("-filter_complex"),
             QStringLiteral(
                 "[1:v]format=yuv420p,geq=lum='if(mod(floor(N/pow(2,floor(X/48))),2),235,16)':cb=128:cr=128[bars];"
                 "[0:v]format=yuv420p[motion];[bars][motion]vstack"),
             QStringLiteral("-map"),
             QStringLiteral("2:a"),
             QStringLiteral("-c:v"),
             QStringLiteral("libx264"),
             QStringLiteral("-preset"),
             QStringLiteral("ultrafast"),
             QStringLiteral("-qp"),
             QStringLiteral("12"),
             QStringLiteral("-g"),
             QStringLiteral("25"),
             QStringLiteral("-c:a"),
             QStringLiteral("pcm_s16le"),
             unfinished});
    });
}

QString subtitle_file(const QString& name, const QByteArray& first, const QByteArray& second)
{
    return made_once(name, [&](const QString& unfinished) {
        QFile file(unfinished);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot write %s", qPrintable(unfinished));
        file.write("1\n00:00:01,000 --> 00:00:02,000\n" + first + "\n\n2\n00:00:03,000 --> 00:00:04,000\n" + second +
                   "\n\n");
    });
}

QStringList words(const char* text)
{
    QStringList result;
    for (const QString& word : QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts)) {
        if (word == QLatin1String("X264")) {
            result += words(x264);
        } else if (word == QLatin1String("SOURCE")) {
            result += source();
        } else if (word == QLatin1String("FILM")) {
            result += test_films::path("h264.mp4");
        } else if (word == QLatin1String("KOREAN")) {
            result +=
                subtitle_file(QStringLiteral("korean.srt"), "\xed\x95\x9c\xea\xb5\xad\xec\x96\xb4", "\xeb\x91\x98");
        } else if (word == QLatin1String("ENGLISH")) {
            result += subtitle_file(QStringLiteral("english.srt"), "<i>English</i>", "Two\nlines");
        } else if (word == QLatin1String("MAPS")) {
            for (int track = 0; track < 32; ++track)
                result += {QStringLiteral("-map"), QStringLiteral("0:a")};
        } else {
            result += word;
        }
    }
    return result;
}

} // namespace

namespace test_films
{

QString path(const QString& name)
{
    const auto* const recipe = std::find_if(
        recipes.begin(), recipes.end(), [&](const Recipe& candidate) { return name == QLatin1String(candidate.name); });
    if (recipe == recipes.end())
        qFatal("no film called %s", qPrintable(name));
    return made_once(name, [&](const QString& unfinished) {
        run_ffmpeg(words(recipe->inputs) + words(recipe->arguments) + QStringList{unfinished});
    });
}

QStringList names()
{
    QStringList result;
    for (const Recipe& recipe : recipes)
        result += QString::fromLatin1(recipe.name);
    return result;
}

QString copy(const QString& name, const QString& directory, const QString& as)
{
    const QString target = QDir(directory).filePath(as);
    QFile::remove(target);
    if (!QFile::copy(path(name), target))
        qFatal("cannot copy %s to %s", qPrintable(name), qPrintable(target));
    return target;
}

int frame_number(const QImage& picture)
{
    constexpr int bars = 10;
    int number = 0;
    for (int bar = 0; bar < bars; ++bar) {
        const int x = (2 * bar + 1) * picture.width() / (2 * bars);
        const int lightness = qGray(picture.pixel(x, picture.height() / 8));
        if (lightness > 80 && lightness < 140)
            return -1;
        if (lightness >= 140)
            number |= 1 << bar;
    }
    return number;
}

} // namespace test_films
