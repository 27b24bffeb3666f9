#include "subtitle_encoding.h"

#include "text_codec.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>
#include <vector>

namespace
{

constexpr char16_t replacement = u'\uFFFD';

uchar byte_at(QByteArrayView bytes, qsizetype index)
{
    return index < bytes.size() ? static_cast<uchar>(bytes[index]) : uchar(0);
}

bool is_ascii_letter(uchar byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

/// How well a reading fits: the lower, the better.
struct Reading {
    int faults = 0;         ///< characters that are lost
    int odd = 0;            ///< characters that are possible but seldom where they stand
    int beyond_ascii = 0;   ///< characters that were more than one byte
    int grouped = 0;        ///< of these, those that stand in groups and touch no Latin letter
    bool only_latin = true; ///< UTF-8: all of them are accented Latin letters
};

bool is_continuation(uchar byte)
{
    return (byte & 0xC0) == 0x80;
}

int length_by_lead(uchar lead)
{
    return lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
}

/// The length of the whole UTF-8 sequence at @p at, or 0.
int sequence_length(QByteArrayView bytes, qsizetype at)
{
    const uchar lead = byte_at(bytes, at);
    const int length = length_by_lead(lead);
    if (length <= 1)
        return length;
    const uchar second = byte_at(bytes, at + 1);
    const bool too_long = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool no_character = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    if (too_long || no_character)
        return 0;
    for (int index = 1; index < length; ++index) {
        if (!is_continuation(byte_at(bytes, at + index)))
            return 0;
    }
    return length;
}

/// How many bytes belong to the damaged character at @p at: what stands where its other bytes would.
int damaged_length(QByteArrayView bytes, qsizetype at)
{
    const int expected = length_by_lead(byte_at(bytes, at));
    if (expected >= 3 && !is_continuation(byte_at(bytes, at + 1)) && is_continuation(byte_at(bytes, at + 2)) &&
        length_by_lead(byte_at(bytes, at + 1)) < 2) {
        // The byte in the middle is the damaged one.
        int length = 3;
        while (length < expected && is_continuation(byte_at(bytes, at + length)))
            ++length;
        return length;
    }
    const int most = expected > 1 ? expected : 4;
    int length = 1;
    while (length < most && byte_at(bytes, at + length) >= 0x80 && sequence_length(bytes, at + length) == 0 &&
           length_by_lead(byte_at(bytes, at + length)) == 0)
        ++length;
    return length;
}

Reading read_utf8(QByteArrayView bytes, QString* text)
{
    Reading reading;
    qsizetype group = 0;
    bool touches_letter = false;
    const auto close_group = [&](qsizetype end) {
        if (group > 1 && !touches_letter && !is_ascii_letter(byte_at(bytes, end)))
            reading.grouped += static_cast<int>(group);
        group = 0;
    };
    for (qsizetype at = 0; at < bytes.size();) {
        const uchar lead = byte_at(bytes, at);
        if (lead < 0x80) {
            if (group > 0)
                close_group(at);
            if (text)
                text->append(QLatin1Char(static_cast<char>(lead)));
            ++at;
            continue;
        }
        const int length = sequence_length(bytes, at);
        if (length == 0) {
            ++reading.faults;
            if (text)
                text->append(replacement);
            at += damaged_length(bytes, at);
            continue;
        }
        if (group++ == 0)
            touches_letter = at > 0 && is_ascii_letter(byte_at(bytes, at - 1));
        ++reading.beyond_ascii;
        reading.only_latin = reading.only_latin && lead >= 0xC2 && lead <= 0xC8;
        if (text) {
            auto character = static_cast<char32_t>(lead & (0x7F >> length));
            for (int index = 1; index < length; ++index)
                character = (character << 6) | (byte_at(bytes, at + index) & 0x3F);
            for (const char16_t unit : QChar::fromUcs4(character))
                text->append(QChar(unit));
        }
        at += length;
    }
    if (group > 0)
        close_group(bytes.size());
    return reading;
}

constexpr int first_lead = 0x81;
constexpr int last_lead = 0xFE;
constexpr int first_trail = 0x41;
constexpr int last_trail = 0xFE;
constexpr int trails = last_trail - first_trail + 1;

using DoubleBytes = std::array<char16_t, static_cast<std::size_t>((last_lead - first_lead + 1) * trails)>;

std::optional<std::size_t> place_of(uchar lead, uchar trail)
{
    if (lead < first_lead || lead > last_lead || trail < first_trail || trail > last_trail)
        return std::nullopt;
    return static_cast<std::size_t>((lead - first_lead) * trails + trail - first_trail);
}

/// The characters of two bytes, 0 where there is none.
const DoubleBytes& double_bytes()
{
    static const DoubleBytes table = [] {
        DoubleBytes characters = {};
        const QTextCodec& codec = *QTextCodec::codecForName("CP949");
        for (int lead = first_lead; lead <= last_lead; ++lead) {
            // A line feed after each pair: what is no character cannot swallow what follows.
            QByteArray row;
            for (int trail = first_trail; trail <= last_trail; ++trail)
                row.append(static_cast<char>(lead)).append(static_cast<char>(trail)).append('\n');
            const QStringList pairs = codec.toUnicode(row).split(u'\n');
            for (int trail = first_trail; trail <= last_trail; ++trail) {
                const QString& pair = pairs[trail - first_trail];
                if (pair.size() == 1 && pair[0].unicode() >= 0x80 && pair[0] != replacement)
                    characters[*place_of(static_cast<uchar>(lead), static_cast<uchar>(trail))] = pair[0].unicode();
            }
        }
        return characters;
    }();
    return table;
}

char16_t double_byte(uchar lead, uchar trail)
{
    const std::optional<std::size_t> place = place_of(lead, trail);
    return place ? double_bytes()[*place] : char16_t(0);
}

bool is_common_hangul(uchar lead, uchar trail)
{
    return lead >= 0xB0 && lead <= 0xC8 && trail >= 0xA1;
}

/// Reads damaged stretches of CP949 in the way that loses the fewest characters: a lost byte must not shift the pairs
/// behind it.
class Mender
{
public:
    explicit Mender(QByteArrayView bytes) : m_bytes(bytes) {}

    /// Reads the bytes from @p from up to @p to, a stretch without blanks.
    void mend(qsizetype from, qsizetype to, std::vector<char16_t>& units);

private:
    enum class Step { Plain = 0, Pair = 1, LostPair = 2, LostByte = 3 };

    void see_pairs();
    int pair_cost(uchar lead, uchar trail) const;
    int lost_byte_cost(qsizetype at, qsizetype from, qsizetype to) const;

    QByteArrayView m_bytes;
    std::vector<bool> m_seen; ///< the pairs that stand in the file's sound stretches; filled when first needed
};

/// What a text says once it says again: that tells apart readings that lose equally much.
void Mender::see_pairs()
{
    m_seen.assign(std::tuple_size_v<DoubleBytes>, false);
    std::vector<std::size_t> places;
    for (qsizetype at = 0; at < m_bytes.size();) {
        places.clear();
        bool sound = true;
        while (at < m_bytes.size() && byte_at(m_bytes, at) >= 0x80) {
            const uchar lead = byte_at(m_bytes, at);
            const uchar trail = byte_at(m_bytes, at + 1);
            const bool is_pair = double_byte(lead, trail) != 0;
            if (is_pair)
                places.push_back(*place_of(lead, trail));
            sound = sound && is_pair;
            at += is_pair ? 2 : 1;
        }
        if (sound) {
            for (const std::size_t place : places)
                m_seen[place] = true;
        }
        ++at;
    }
}

int Mender::pair_cost(uchar lead, uchar trail) const
{
    if (m_seen[*place_of(lead, trail)])
        return 0;
    return is_common_hangul(lead, trail) ? 1 : 3;
}

/// What was damaged into a letter or a blank leaves its other half next to that.
int Mender::lost_byte_cost(qsizetype at, qsizetype from, qsizetype to) const
{
    const bool beside_plain =
        at == from || at + 1 == to || byte_at(m_bytes, at - 1) < 0x80 || byte_at(m_bytes, at + 1) < 0x80;
    return beside_plain ? 56 : 64;
}

void Mender::mend(qsizetype from, qsizetype to, std::vector<char16_t>& units)
{
    constexpr int lost_pair_cost = 60;
    if (m_seen.empty())
        see_pairs();
    const auto size = static_cast<std::size_t>(to - from);
    std::vector<int> cost(size + 2, 0);
    std::vector<Step> steps(size, Step::Plain);
    for (std::size_t left = size; left-- > 0;) {
        const qsizetype at = from + static_cast<qsizetype>(left);
        const uchar lead = byte_at(m_bytes, at);
        if (lead < 0x80) {
            cost[left] = cost[left + 1];
            continue;
        }
        const auto choose = [&cost, &steps, left](Step step, int price) {
            cost[left] = price;
            steps[left] = step;
        };
        choose(Step::LostByte, cost[left + 1] + lost_byte_cost(at, from, to));
        if (left + 1 == size)
            continue;
        const uchar trail = byte_at(m_bytes, at + 1);
        if (trail >= 0x80 && cost[left + 2] + lost_pair_cost < cost[left])
            choose(Step::LostPair, cost[left + 2] + lost_pair_cost);
        if (double_byte(lead, trail) != 0 && cost[left + 2] + pair_cost(lead, trail) <= cost[left])
            choose(Step::Pair, cost[left + 2] + pair_cost(lead, trail));
    }
    for (std::size_t left = 0; left < size;) {
        const qsizetype at = from + static_cast<qsizetype>(left);
        const uchar lead = byte_at(m_bytes, at);
        const Step step = steps[left];
        units.push_back(step == Step::Plain  ? static_cast<char16_t>(lead)
                        : step == Step::Pair ? double_byte(lead, byte_at(m_bytes, at + 1))
                                             : replacement);
        left += step == Step::Pair || step == Step::LostPair ? 2 : 1;
    }
}

Reading read_cp949(QByteArrayView bytes, QString* text)
{
    Reading reading;
    Mender mender(bytes);
    std::vector<char16_t> units;
    for (qsizetype at = 0; at < bytes.size();) {
        const uchar first = byte_at(bytes, at);
        if (first < 0x80) {
            if (text)
                text->append(QLatin1Char(static_cast<char>(first)));
            ++at;
            continue;
        }
        // What stands together: bytes below 0x41 are no half of a pair.
        qsizetype end = at;
        while (end < bytes.size() && (byte_at(bytes, end) >= 0x80 || is_ascii_letter(byte_at(bytes, end))))
            ++end;
        units.clear();
        bool faultless = true;
        bool after_letter = at > 0 && is_ascii_letter(byte_at(bytes, at - 1));
        int odd = 0;
        for (qsizetype place = at; place < end && faultless;) {
            const uchar lead = byte_at(bytes, place);
            const uchar trail = place + 1 < end ? byte_at(bytes, place + 1) : uchar(0);
            const char16_t pair = lead < 0x80 ? char16_t(0) : double_byte(lead, trail);
            faultless = lead < 0x80 || pair != 0;
            units.push_back(pair != 0 ? pair : static_cast<char16_t>(lead));
            if (pair != 0)
                odd += (after_letter ? 1 : 0) + (trail < 0x80 ? 2 : trail < 0xA1 ? 1 : 0);
            after_letter = pair == 0;
            place += pair != 0 ? 2 : 1;
        }
        if (!faultless) {
            units.clear();
            mender.mend(at, end, units);
            reading.faults += static_cast<int>(std::count(units.begin(), units.end(), replacement));
        }
        reading.odd += odd;
        if (text)
            text->append(QStringView(units.data(), static_cast<qsizetype>(units.size())));
        at = end;
    }
    return reading;
}

/// A file without a byte order mark of which every other byte is zero: one language's letters in UTF-16.
std::optional<SubtitleEncoding> guess_utf16(QByteArrayView bytes)
{
    const qsizetype looked_at = std::min<qsizetype>(bytes.size(), 4096) & ~qsizetype(1);
    std::array<qsizetype, 2> zeros = {};
    for (qsizetype at = 0; at < looked_at; ++at)
        zeros[static_cast<std::size_t>(at & 1)] += bytes[at] == 0 ? 1 : 0;
    // Markup and time codes alone make for more than a quarter.
    const qsizetype many = std::max<qsizetype>(looked_at / 8, 4);
    if (zeros[1] >= many && zeros[0] * 16 < zeros[1])
        return SubtitleEncoding::Utf16LittleEndian;
    if (zeros[0] >= many && zeros[1] * 16 < zeros[0])
        return SubtitleEncoding::Utf16BigEndian;
    return std::nullopt;
}

QString read_utf16(QByteArrayView bytes, bool little_endian)
{
    QString text(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype index = 0; index < text.size(); ++index) {
        const uchar first = byte_at(bytes, 2 * index);
        const uchar second = byte_at(bytes, 2 * index + 1);
        text[index] = little_endian ? QChar(first, second) : QChar(second, first);
    }
    return text;
}

struct Mark {
    const char* bytes;
    SubtitleEncoding encoding;
};

constexpr Mark marks[] = {
    {"\xEF\xBB\xBF", SubtitleEncoding::Utf8},
    {"\xFF\xFE", SubtitleEncoding::Utf16LittleEndian},
    {"\xFE\xFF", SubtitleEncoding::Utf16BigEndian},
};

std::optional<SubtitleEncoding> marked_encoding(QByteArrayView bytes)
{
    for (const Mark& mark : marks) {
        if (bytes.startsWith(QByteArrayView(mark.bytes)))
            return mark.encoding;
    }
    return guess_utf16(bytes);
}

bool is_utf16(SubtitleEncoding encoding)
{
    return encoding == SubtitleEncoding::Utf16LittleEndian || encoding == SubtitleEncoding::Utf16BigEndian;
}

} // namespace

bool is_text(QByteArrayView bytes)
{
    constexpr qsizetype looked_at = 65536;
    constexpr qsizetype one_in = 25;
    bytes = bytes.first(std::min(bytes.size(), looked_at));
    if (is_utf16(marked_encoding(bytes).value_or(SubtitleEncoding::Utf8)))
        return true;
    const auto controls = std::count_if(bytes.begin(), bytes.end(), [](char byte) {
        const auto value = static_cast<uchar>(byte);
        return (value < 0x20 && value != '\t' && value != '\n' && value != '\r' && value != '\f') || value == 0x7F;
    });
    return controls <= bytes.size() / one_in;
}

SubtitleEncoding guess_encoding(QByteArrayView bytes)
{
    if (const std::optional<SubtitleEncoding> marked = marked_encoding(bytes))
        return *marked;
    const Reading utf8 = read_utf8(bytes, nullptr);
    if (utf8.faults == 0 && (utf8.beyond_ascii == 0 || !utf8.only_latin))
        return SubtitleEncoding::Utf8;
    const Reading cp949 = read_cp949(bytes, nullptr);
    if (utf8.faults == 0 && cp949.faults == 0) {
        // A few Hangul syllables look like accented letters. Those stand inside words of plain letters, never in
        // groups.
        return utf8.grouped * 2 > utf8.beyond_ascii ? SubtitleEncoding::Cp949 : SubtitleEncoding::Utf8;
    }
    constexpr int fault_weight = 3;
    return cp949.faults * fault_weight + cp949.odd < utf8.faults * fault_weight ? SubtitleEncoding::Cp949
                                                                                : SubtitleEncoding::Utf8;
}

QString decode(QByteArrayView bytes, SubtitleEncoding encoding)
{
    for (const Mark& mark : marks) {
        if (mark.encoding == encoding && bytes.startsWith(QByteArrayView(mark.bytes)))
            bytes = bytes.sliced(QByteArrayView(mark.bytes).size());
    }
    QString text;
    switch (encoding) {
    case SubtitleEncoding::Utf16LittleEndian:
    case SubtitleEncoding::Utf16BigEndian:
        return read_utf16(bytes, encoding == SubtitleEncoding::Utf16LittleEndian);
    case SubtitleEncoding::Utf8:
        text.reserve(bytes.size());
        read_utf8(bytes, &text);
        break;
    case SubtitleEncoding::Cp949:
        text.reserve(bytes.size());
        read_cp949(bytes, &text);
        break;
    }
    return text;
}

QString decode_guessed(QByteArrayView bytes)
{
    return decode(bytes, guess_encoding(bytes));
}
