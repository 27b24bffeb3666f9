#include "file_manager_entry.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::array film_suffixes = {
    QLatin1String("3g2"),  QLatin1String("3gp"),  QLatin1String("asf"),  QLatin1String("avi"), QLatin1String("divx"),
    QLatin1String("f4v"),  QLatin1String("flv"),  QLatin1String("k3g"),  QLatin1String("m2t"), QLatin1String("m2ts"),
    QLatin1String("m4v"),  QLatin1String("mkv"),  QLatin1String("mov"),  QLatin1String("mp4"), QLatin1String("mpe"),
    QLatin1String("mpeg"), QLatin1String("mpg"),  QLatin1String("mts"),  QLatin1String("ogm"), QLatin1String("ogv"),
    QLatin1String("rm"),   QLatin1String("rmvb"), QLatin1String("skm"),  QLatin1String("tp"),  QLatin1String("trp"),
    QLatin1String("ts"),   QLatin1String("vob"),  QLatin1String("webm"), QLatin1String("wmv"), QLatin1String("y4m"),
};

constexpr std::array play_list_suffixes = {
    QLatin1String("m3u"),
    QLatin1String("m3u8"),
    QLatin1String("pls"),
};

bool is_digit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

qsizetype end_of_digits(QStringView text, qsizetype from)
{
    while (from < text.size() && is_digit(text[from]))
        ++from;
    return from;
}

/// Negative, zero or positive as @p left stands before, with or behind @p right. Any number of digits.
int compare_numbers(QStringView left, QStringView right)
{
    while (left.size() > 1 && left.front() == QLatin1Char('0'))
        left = left.mid(1);
    while (right.size() > 1 && right.front() == QLatin1Char('0'))
        right = right.mid(1);
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    return left.compare(right);
}

} // namespace

bool natural_less(QStringView left, QStringView right)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < left.size() && j < right.size()) {
        if (is_digit(left[i]) && is_digit(right[j])) {
            const qsizetype left_end = end_of_digits(left, i);
            const qsizetype right_end = end_of_digits(right, j);
            const int order = compare_numbers(left.mid(i, left_end - i), right.mid(j, right_end - j));
            if (order != 0)
                return order < 0;
            i = left_end;
            j = right_end;
        } else {
            const QChar a = left[i].toCaseFolded();
            const QChar b = right[j].toCaseFolded();
            if (a != b)
                return a < b;
            ++i;
            ++j;
        }
    }
    if (left.size() - i != right.size() - j)
        return left.size() - i < right.size() - j;
    return left.compare(right) < 0;
}

bool entry_less(const FileManagerEntry& left, const FileManagerEntry& right)
{
    if (left.kind != right.kind)
        return left.kind < right.kind;
    return natural_less(left.name, right.name);
}

FileManagerEntry::Kind kind_of_file(QStringView name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot < 1)
        return FileManagerEntry::Kind::Other;
    const QStringView suffix = name.mid(dot + 1);
    const auto is_suffix = [&](QLatin1String known) { return suffix.compare(known, Qt::CaseInsensitive) == 0; };
    if (std::any_of(film_suffixes.begin(), film_suffixes.end(), is_suffix))
        return FileManagerEntry::Kind::Film;
    if (std::any_of(play_list_suffixes.begin(), play_list_suffixes.end(), is_suffix))
        return FileManagerEntry::Kind::PlayList;
    return FileManagerEntry::Kind::Other;
}
