#include "qcop_message.h"

#include "qcop_envelope.h"

#include <QDataStream>
#include <QString>
#include <algorithm>

namespace
{

template<typename T> void skip(QDataStream& stream)
{
    T value{};
    stream >> value;
}

// Not QDataStream's own operator, which makes room for as many strings as the count pretends.
void skip_string_list(QDataStream& stream)
{
    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i)
        skip<QString>(stream);
}

struct Type {
    const char* name;
    void (*skip)(QDataStream&);
};

constexpr Type types[] = {
    {"QString", skip<QString>},
    {"QCString", skip<QByteArray>},
    {"QByteArray", skip<QByteArray>},
    {"QStringList", skip_string_list},
    {"bool", skip<bool>},
    {"char", skip<qint8>},
    {"unsigned char", skip<quint8>},
    {"short", skip<qint16>},
    {"unsigned short", skip<quint16>},
    {"int", skip<qint32>},
    {"unsigned int", skip<quint32>},
    {"long long", skip<qint64>},
    {"unsigned long long", skip<quint64>},
    {"double", skip<double>},
};

} // namespace

const char* QCopMessage::fault(const QByteArray& message, const QByteArray& data)
{
    const qsizetype open = message.indexOf('(');
    if (open < 1 || !message.endsWith(')') || message.size() > longest_name)
        return "its name is not of the form name(types)";
    if (data.size() > most_argument_bytes)
        return "its arguments are too large";
    QDataStream stream(data);
    stream.setVersion(QCopEnvelope::stream_version);
    const QByteArray list = message.mid(open + 1, message.size() - open - 2);
    for (const QByteArray& name : list.isEmpty() ? QList<QByteArray>() : list.split(',')) {
        const auto* const type = std::find_if(std::begin(types), std::end(types),
                                              [&](const Type& row) { return name.trimmed() == row.name; });
        if (type == std::end(types))
            return nullptr;
        type->skip(stream);
        if (stream.status() != QDataStream::Ok)
            return "its arguments do not decode";
    }
    return stream.atEnd() ? nullptr : "something stands behind its arguments";
}
