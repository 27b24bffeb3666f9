#include "text_codec.h"

#include <algorithm>
#include <cerrno>
#include <iconv.h>

namespace
{

constexpr char code_page[] = "CP949";
constexpr char widening_mark = '\xFF';

struct CodecName {
    const char* name;
    int codec;
};

constexpr CodecName names[] = {
    {"CP949", 0}, {"UHC", 0}, {"windows-949", 0}, {"eucKR", 1}, {"EUC-KR", 1},
};

// A conversion of the C library; not shared between threads, so each thread opens its own, once.
class Conversion
{
public:
    Conversion(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
    ~Conversion()
    {
        if (is_open())
            iconv_close(descriptor_);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    bool is_open() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

    // Converts from @p input up to its end or to the first sequence that cannot be converted, appends the result to @p
    // output and returns how many bytes were taken.
    qsizetype run(const char* input, qsizetype size, QByteArray& output) const
    {
        auto* in = const_cast<char*>(input);
        auto in_left = static_cast<size_t>(size);
        while (in_left > 0) {
            char block[4096];
            char* out = block;
            size_t out_left = sizeof block;
            const size_t result = iconv(descriptor_, &in, &in_left, &out, &out_left);
            output.append(block, out - block);
            if (result == static_cast<size_t>(-1) && errno != E2BIG)
                break;
        }
        return size - static_cast<qsizetype>(in_left);
    }

private:
    iconv_t descriptor_;
};

// The length of the UTF-8 sequence at @p bytes if it is whole, shortest and stands for a character, else 0.
qsizetype utf8_sequence_length(const char* bytes, qsizetype size)
{
    if (size < 1)
        return 0;
    const auto lead = static_cast<unsigned char>(bytes[0]);
    const qsizetype length = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    if (length == 0 || length > size)
        return 0;
    return QtPrivate::isValidUtf8(QByteArrayView(bytes, length)) ? length : 0;
}

// The character of such a sequence. Not QString::fromUtf8(), which drops a byte order mark.
char32_t utf8_character(const char* bytes, qsizetype length)
{
    auto code_point = static_cast<char32_t>(static_cast<uchar>(bytes[0]) & (length == 1 ? 0x7F : 0x7F >> length));
    for (qsizetype i = 1; i < length; ++i)
        code_point = (code_point << 6) | (static_cast<uchar>(bytes[i]) & 0x3F);
    return code_point;
}

// @p text with U+FFFD for each half of a surrogate pair that stands alone.
QString without_halves(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isSurrogate())
            continue;
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

QTextCodec::QTextCodec(const char* name) : name_(name) {}

QTextCodec* QTextCodec::codecForName(const char* name)
{
    static QTextCodec codecs[] = {QTextCodec("CP949"), QTextCodec("eucKR")};
    for (const CodecName& known : names) {
        if (qstricmp(known.name, name) == 0)
            return &codecs[known.codec];
    }
    return nullptr;
}

QString QTextCodec::toUnicode(const QByteArray& bytes) const
{
    thread_local const Conversion conversion("UTF-16LE", code_page);
    const char replacement[] = "\xFD\xFF";
    QByteArray utf16;
    utf16.reserve(bytes.size() * 2);
    const char* position = bytes.constData();
    const char* const end = position + bytes.size();
    const char* plain_end = position;
    while (position < end) {
        // No character goes across the mark.
        if (position >= plain_end)
            plain_end = std::find(position, end, widening_mark);
        if (conversion.is_open())
            position += conversion.run(position, plain_end - position, utf16);
        if (position == end)
            break;
        const qsizetype widened =
            *position == widening_mark ? utf8_sequence_length(position + 1, end - position - 1) : 0;
        if (widened > 0) {
            const char32_t code_point = utf8_character(position + 1, widened);
            for (const char16_t unit : QChar::fromUcs4(code_point)) {
                utf16.append(static_cast<char>(unit & 0xFF));
                utf16.append(static_cast<char>(unit >> 8));
            }
            position += 1 + widened;
        } else {
            utf16.append(replacement, 2);
            ++position;
        }
    }
    QString text(utf16.size() / 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        text[i] = QChar(static_cast<uchar>(utf16[2 * i]), static_cast<uchar>(utf16[2 * i + 1]));
    return text;
}

QByteArray QTextCodec::fromUnicode(const QString& text) const
{
    thread_local const Conversion conversion(code_page, "UTF-8");
    const QByteArray utf8 = (text.isValidUtf16() ? text : without_halves(text)).toUtf8();
    QByteArray bytes;
    bytes.reserve(utf8.size());
    const char* position = utf8.constData();
    const char* const end = position + utf8.size();
    const char* plain_end = position;
    while (position < end) {
        // Beyond the basic plane the code page has nothing, and the C library would silently leave out some of it.
        if (position >= plain_end)
            plain_end = std::find_if(position, end, [](char byte) { return static_cast<uchar>(byte) >= 0xF0; });
        if (conversion.is_open())
            position += conversion.run(position, plain_end - position, bytes);
        if (position == end)
            break;
        const qsizetype length = std::max<qsizetype>(utf8_sequence_length(position, end - position), 1);
        bytes.append(widening_mark);
        bytes.append(position, length);
        position += length;
    }
    return bytes;
}
