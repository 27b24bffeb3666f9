#include "spread_film.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <map>
#include <vector>

namespace
{

constexpr qsizetype header_bytes = 8;
constexpr qsizetype large_header_bytes = 16;

/// The boxes that hold boxes down to the tables of places.
constexpr std::array containers{"moov", "trak", "mdia", "minf", "stbl"};

struct Box {
    QByteArray type;
    qsizetype begin = 0; ///< of its content
    qsizetype end = 0;
};

/// The boxes of @p data between @p begin and @p end; none where their sizes make no sense.
std::vector<Box> boxes_of(const QByteArray& data, qsizetype begin, qsizetype end)
{
    std::vector<Box> boxes;
    while (begin + header_bytes <= end) {
        const auto size = qFromBigEndian<quint32>(data.constData() + begin);
        if (size < header_bytes || size > static_cast<quint32>(end - begin))
            return {};
        boxes.push_back({data.mid(begin + 4, 4), begin + header_bytes, begin + static_cast<qsizetype>(size)});
        begin += static_cast<qsizetype>(size);
    }
    return boxes;
}

QByteArray box(const QByteArray& type, const QByteArray& content)
{
    QByteArray header(4, Qt::Uninitialized);
    qToBigEndian(static_cast<quint32>(content.size() + header_bytes), header.data());
    return header + type + content;
}

/// Where pieces of the old file begin, and where they go.
using Places = std::map<qint64, qint64>;

/// Collects the places of a "stco" table: version and flags, a count, and 32 bits for each piece.
void collect(const QByteArray& data, const Box& table, Places& places)
{
    for (qsizetype at = table.begin + header_bytes; at + 4 <= table.end; at += 4)
        places.emplace(qFromBigEndian<quint32>(data.constData() + at), 0);
}

/// The same table with 64 bits for each piece: "co64".
QByteArray large_table(const QByteArray& data, const Box& table, const Places& places)
{
    QByteArray content = data.mid(table.begin, header_bytes);
    for (qsizetype at = table.begin + header_bytes; at + 4 <= table.end; at += 4) {
        QByteArray place(8, Qt::Uninitialized);
        qToBigEndian(places.at(qFromBigEndian<quint32>(data.constData() + at)), place.data());
        content += place;
    }
    return box("co64", content);
}

bool is_container(const QByteArray& type)
{
    return std::find(containers.begin(), containers.end(), type) != containers.end();
}

void collect_below(const QByteArray& data, const Box& above, Places& places)
{
    for (const Box& each : boxes_of(data, above.begin, above.end)) {
        if (each.type == "stco")
            collect(data, each, places);
        else if (is_container(each.type))
            collect_below(data, each, places);
    }
}

QByteArray moved_below(const QByteArray& data, const Box& above, const Places& places)
{
    QByteArray content;
    for (const Box& each : boxes_of(data, above.begin, above.end)) {
        if (each.type == "stco")
            content += large_table(data, each, places);
        else if (is_container(each.type))
            content += moved_below(data, each, places);
        else
            content += data.mid(each.begin - header_bytes, each.end - each.begin + header_bytes);
    }
    return box(above.type, content);
}

} // namespace

bool spread_film(const QString& source, const QString& target, qint64 size)
{
    QFile film(source);
    if (!film.open(QIODevice::ReadOnly))
        return false;
    const QByteArray data = film.readAll();
    QByteArray beginning;
    Box index;
    Box content;
    for (const Box& each : boxes_of(data, 0, data.size())) {
        if (each.type == "ftyp")
            beginning = data.mid(each.begin - header_bytes, each.end - each.begin + header_bytes);
        else if (each.type == "moov")
            index = each;
        else if (each.type == "mdat")
            content = each;
    }
    Places places;
    collect_below(data, index, places);
    if (beginning.isEmpty() || places.empty() || places.begin()->first < content.begin ||
        places.rbegin()->first >= content.end)
        return false;

    // The tables' own size does not depend on what stands in them.
    const qsizetype index_size = moved_below(data, index, places).size();
    const qint64 content_begin = beginning.size() + large_header_bytes;
    const qint64 content_end = size - index_size;
    const qint64 step = (content_end - content_begin - data.size()) / static_cast<qint64>(places.size());
    qint64 next = content_begin;
    for (auto& [old_place, new_place] : places) {
        new_place = next;
        next += step;
    }

    QFile spread(target);
    if (!spread.open(QIODevice::WriteOnly) || !spread.resize(size))
        return false;
    const auto put = [&](qint64 place, const QByteArray& bytes) {
        return spread.seek(place) && spread.write(bytes) == bytes.size();
    };
    // A size of 1 says that the real one follows, in 64 bits.
    QByteArray header = QByteArray("\0\0\0\1mdat", header_bytes) + QByteArray(8, Qt::Uninitialized);
    qToBigEndian(content_end - beginning.size(), header.data() + header_bytes);
    if (!put(0, beginning + header) || !put(content_end, moved_below(data, index, places)))
        return false;
    for (auto each = places.cbegin(); each != places.cend(); ++each) {
        const auto after = std::next(each);
        const qsizetype end = after == places.cend() ? content.end : static_cast<qsizetype>(after->first);
        const auto begin = static_cast<qsizetype>(each->first);
        if (end - begin > step || !put(each->second, data.mid(begin, end - begin)))
            return false;
    }
    return spread.flush();
}
