#include "subtitle_encoding.h"

#include "text_codec.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
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

/// Asks now and then whether a long reading goes on.
class Patience
{
public:
    explicit Patience(const std::atomic<bool>& cancelled) : m_cancelled(cancelled) {}

    /// @param at how far the reading has come
    bool is_over(qsizetype at)
    {
        if (at < m_next_question)
            return false;
        constexpr qsizetype block = 65536;
        m_next_question = at + block;
        return m_cancelled;
    }

private:
    const std::atomic<bool>& m_cancelled;
    qsizetype m_next_question = 0;
};

/// How well a reading fits: the lower, the better.
struct Reading {
    int faults = 0;         ///< characters that are lost
    int odd = 0;            ///< characters that are possible but seldom where they stand
    int beyond_ascii = 0;   ///< characters that were more than one byte
    int grouped = 0;        ///< of these, those that stand as accented letters do not; see AccentWatch
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

/// Counts what is valid as UTF-8 and stands as accented letters do not, but Hangul does: in groups that touch no plain
/// letter, or alone where there are no plain letters at all.
class AccentWatch
{
public:
    void see_plain(uchar byte)
    {
        close_group(is_ascii_letter(byte));
        switch (byte) {
        case '<':
            m_in_tag = true;
            break;
        case '>':
            m_in_tag = false;
            break;
        case '\n':
        case '\r':
            close_line();
            break;
        default:
            m_has_letters = m_has_letters || (!m_in_tag && is_ascii_letter(byte));
            m_has_digits = m_has_digits || (!m_in_tag && byte >= '0' && byte <= '9');
        }
        m_behind_letter = is_ascii_letter(byte);
    }

    void see_accented(uchar lead)
    {
        if (m_group++ == 0)
            m_touches_letter = m_behind_letter;
        m_lead = lead;
        m_behind_letter = false;
    }

    /// @return how many there were
    int finish()
    {
        close_group(false);
        close_line();
        return m_strange;
    }

private:
    void close_group(bool touches_letter)
    {
        if (m_group == 0)
            return;
        constexpr uchar lead_of_symbols = 0xC2;
        constexpr uchar lead_of_words = 0xC3; // such as "à"; the others are no words
        if (!m_touches_letter && !touches_letter) {
            if (m_group > 1 || m_lead > lead_of_words)
                m_strange += m_group;
            else if (m_lead == lead_of_symbols)
                ++m_lone_symbols;
            else
                ++m_lone_letters;
        }
        m_group = 0;
    }

    void close_line()
    {
        if (!m_has_letters)
            m_strange += m_lone_letters + (m_has_digits ? 0 : m_lone_symbols);
        m_lone_letters = 0;
        m_lone_symbols = 0;
        m_has_letters = false;
        m_has_digits = false;
        m_in_tag = false;
    }

    int m_strange = 0;
    int m_group = 0; ///< the size of the group that is open
    uchar m_lead = 0;
    bool m_behind_letter = false;
    bool m_touches_letter = false; ///< the open group, at its front
    int m_lone_letters = 0;        ///< this and the rest: in the line
    int m_lone_symbols = 0;
    bool m_has_letters = false; ///< outside of tags
    bool m_has_digits = false;
    bool m_in_tag = false;
};

Reading read_utf8(QByteArrayView bytes, QString* text, const std::atomic<bool>& cancelled)
{
    Reading reading;
    Patience patience(cancelled);
    AccentWatch accents;
    for (qsizetype at = 0; at < bytes.size() && !patience.is_over(at);) {
        const uchar lead = byte_at(bytes, at);
        if (lead < 0x80) {
            if (text)
                text->append(QLatin1Char(static_cast<char>(lead)));
            else
                accents.see_plain(lead);
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
        ++reading.beyond_ascii;
        reading.only_latin = reading.only_latin && lead >= 0xC2 && lead <= 0xC8;
        if (text) {
            auto character = static_cast<char32_t>(lead & (0x7F >> length));
            for (int index = 1; index < length; ++index)
                character = (character << 6) | (byte_at(bytes, at + index) & 0x3F);
            for (const char16_t unit : QChar::fromUcs4(character))
                text->append(QChar(unit));
        } else {
            accents.see_accented(lead);
        }
        at += length;
    }
    reading.grouped = accents.finish();
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

/// The syllables that Korean talk is mostly made of, the most frequent ones first.
constexpr char16_t frequent_syllables[] =
    // clang-format off
    u"이다는에가을고하지의도로한사어아기나를그은리자시해들서인일대거게면니있요라내수여만보주전정안부스"
    u"무우마것구야상오말없네원까제장으런모더생소세미실신습동알려과와비저러죽금성조람때데진든적간위했못"
    u"잘좋너뭐됐될돼왜누살잖않걸건겠군같었았였랑님당친집번문분연영중식방발물화행경계국회학교선배반복녀"
    u"남엄빠언형딸손눈머입몸갈갑감갔강개객결겁겨격관광괜권귀글급길김깨꺼께꼭끝끼난날낸냐년노놈높느늘능"
    u"늦단달답던덕돈돌두둘둥뒤드디따딱떠떤떻또란래량레력렇례론료루류르른름릅릴림립막많망맞매먹메며명몇"
    u"목바박받밖밤버벌법베별병봐봤북불빌빨싸써썼쓰씀씨산새색석설섯셔션셨속송쇼순술숨쉬슨슬승싫싶심십악"
    u"애약양얘얼업엇열엔예온올옷완외용운울움워월유육음응임작잔잡재쟁져졌족종좀죄준줄줘즈즉증직질짓짜쪽"
    u"찍찮찰참찾채책처천첫체쳐쳤초최추출충취치칠카커컴크큰키킬타탁태터테토통트특틀팀파팔패퍼편평포표품"
    u"프피필할함합항향허험헤혀현혼홀환활황후훈휴흥희히힘";
// clang-format on

/// How little a pair is to be expected in a text; what that text says elsewhere costs nothing.
enum PairCost : uchar {
    already_seen = 0,
    frequent = 1,
    common_hangul = 4,
    symbol = 3,
    alphabet = 7, ///< kana, Greek, Cyrillic and the like
    seldom = 9,   ///< Chinese characters, and the syllables that the plain page lacks
};

uchar usual_cost(uchar lead, uchar trail)
{
    const char16_t character = double_byte(lead, trail);
    if (character != 0 && std::u16string_view(frequent_syllables).find(character) != std::u16string_view::npos)
        return PairCost::frequent;
    constexpr uchar first_plain = 0xA1;
    if (lead < first_plain || trail < first_plain)
        return PairCost::seldom;
    constexpr uchar last_of_symbols = 0xA1;
    return lead <= last_of_symbols ? PairCost::symbol
           : lead < 0xB0           ? PairCost::alphabet
           : lead <= 0xC8          ? PairCost::common_hangul
                                   : PairCost::seldom;
}

using PairCosts = std::array<uchar, std::tuple_size_v<DoubleBytes>>;

/// Of each pair, by its place.
const PairCosts& usual_costs()
{
    static const PairCosts table = [] {
        PairCosts costs = {};
        for (int lead = first_lead; lead <= last_lead; ++lead) {
            for (int trail = first_trail; trail <= last_trail; ++trail) {
                const auto first = static_cast<uchar>(lead);
                const auto second = static_cast<uchar>(trail);
                costs[*place_of(first, second)] = usual_cost(first, second);
            }
        }
        return costs;
    }();
    return table;
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

    void weigh_pairs();
    int lost_byte_cost(qsizetype at) const;

    QByteArrayView m_bytes;
    std::vector<uchar> m_costs; ///< of each pair, by its place; filled when first needed
};

/// Tells apart readings that lose equally much: what a text says in its sound stretches it says again, and a few
/// hundred syllables make up most of all talk.
void Mender::weigh_pairs()
{
    m_costs.assign(usual_costs().begin(), usual_costs().end());
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
                m_costs[place] = PairCost::already_seen;
        }
        ++at;
    }
}

/// What was damaged into a letter or a blank leaves its other half next to that; least of all is that a sign which
/// stands there anyway.
int Mender::lost_byte_cost(qsizetype at) const
{
    constexpr int among_pairs = 208;
    constexpr int beside_usual = 202;
    constexpr int beside_odd = 194;
    constexpr std::string_view usual_before = " \t\r\n<>([\"'-~.";
    constexpr std::string_view usual_behind = " \t\r\n<>)]\"'-~.,!?&";
    const auto cost_beside = [](uchar byte, std::string_view usual) {
        const bool is_usual = usual.find(static_cast<char>(byte)) != std::string_view::npos;
        return byte >= 0x80 ? among_pairs : is_usual ? beside_usual : beside_odd;
    };
    const uchar before = at > 0 ? byte_at(m_bytes, at - 1) : uchar('\n');
    const uchar behind = at + 1 < m_bytes.size() ? byte_at(m_bytes, at + 1) : uchar('\n');
    return std::min(cost_beside(before, usual_before), cost_beside(behind, usual_behind));
}

void Mender::mend(qsizetype from, qsizetype to, std::vector<char16_t>& units)
{
    constexpr int lost_pair_cost = 200;
    if (m_costs.empty())
        weigh_pairs();
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
        choose(Step::LostByte, cost[left + 1] + lost_byte_cost(at));
        if (left + 1 == size)
            continue;
        const uchar trail = byte_at(m_bytes, at + 1);
        if (trail >= 0x80 && cost[left + 2] + lost_pair_cost < cost[left])
            choose(Step::LostPair, cost[left + 2] + lost_pair_cost);
        if (double_byte(lead, trail) == 0)
            continue;
        const int price = cost[left + 2] + m_costs[*place_of(lead, trail)];
        if (price <= cost[left])
            choose(Step::Pair, price);
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

Reading read_cp949(QByteArrayView bytes, QString* text, const std::atomic<bool>& cancelled)
{
    Reading reading;
    Patience patience(cancelled);
    Mender mender(bytes);
    std::vector<char16_t> units;
    for (qsizetype at = 0; at < bytes.size() && !patience.is_over(at);) {
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
    constexpr qsizetype few = 8;
    bytes = bytes.first(std::min(bytes.size(), looked_at));
    // A system that went down while it wrote fills a file up with zeros.
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    if (is_utf16(marked_encoding(bytes).value_or(SubtitleEncoding::Utf8)))
        return true;
    const auto controls = std::count_if(bytes.begin(), bytes.end(), [](char byte) {
        const auto value = static_cast<uchar>(byte);
        return (value < 0x20 && value != '\t' && value != '\n' && value != '\r' && value != '\f') || value == 0x7F;
    });
    return controls <= std::max(few, bytes.size() / one_in);
}

SubtitleEncoding guess_encoding(QByteArrayView bytes, const std::atomic<bool>& cancelled)
{
    if (const std::optional<SubtitleEncoding> marked = marked_encoding(bytes))
        return *marked;
    const Reading utf8 = read_utf8(bytes, nullptr, cancelled);
    if (utf8.faults == 0 && (utf8.beyond_ascii == 0 || !utf8.only_latin))
        return SubtitleEncoding::Utf8;
    const Reading cp949 = read_cp949(bytes, nullptr, cancelled);
    if (utf8.faults == 0 && cp949.faults == 0) {
        // A few hundred Hangul syllables look like accented letters. Those stand inside words of plain letters, hardly
        // ever in groups.
        return utf8.grouped * 2 > utf8.beyond_ascii ? SubtitleEncoding::Cp949 : SubtitleEncoding::Utf8;
    }
    constexpr int fault_weight = 3;
    return cp949.faults * fault_weight + cp949.odd < utf8.faults * fault_weight ? SubtitleEncoding::Cp949
                                                                                : SubtitleEncoding::Utf8;
}

QString decode(QByteArrayView bytes, SubtitleEncoding encoding, const std::atomic<bool>& cancelled)
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
        read_utf8(bytes, &text, cancelled);
        break;
    case SubtitleEncoding::Cp949:
        text.reserve(bytes.size());
        read_cp949(bytes, &text, cancelled);
        break;
    }
    return text;
}

QString decode_guessed(QByteArrayView bytes, const std::atomic<bool>& cancelled)
{
    return decode(bytes, guess_encoding(bytes, cancelled), cancelled);
}
