#include "skin_check.h"

#include "skin_layout.h"
#include "time_skin.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtGui/QColor>
#include <QtGui/QImageReader>

#include <algorithm>

namespace
{

constexpr QRect screen(0, 0, 480, 272);

enum class Kind { Number, Size, Picture, Names, Color, Alignment };

/// A key that the player reads.
struct KeyRule {
    const char* group;
    const char* key;
    Kind kind;
};

constexpr KeyRule key_rules[] = {
    {"MAIN", "title_xpos", Kind::Number},
    {"MAIN", "title_ypos", Kind::Number},
    {"MAIN", "control_xpos", Kind::Number},
    {"MAIN", "control_ypos", Kind::Number},
    {"MAIN", "time_xpos", Kind::Number},
    {"MAIN", "time_ypos", Kind::Number},
    {"MAIN", "playlist_xpos", Kind::Number},
    {"MAIN", "playlist_ypos", Kind::Number},
    {"MAIN", "bookmark_xpos", Kind::Number},
    {"MAIN", "bookmark_ypos", Kind::Number},
    {"VIDEO_CONTROL", "background", Kind::Picture},
    {"VIDEO_CONTROL", "buttons", Kind::Names},
    {"VIDEO_CONTROL", "volume_xpos", Kind::Number},
    {"VIDEO_CONTROL", "volume_ypos", Kind::Number},
    {"VIDEO_TITLE", "background", Kind::Picture},
    {"VIDEO_TITLE", "buttons", Kind::Names},
    {"PLAYLIST", "background", Kind::Picture},
    {"PLAYLIST", "buttons", Kind::Names},
    {"BOOKMARK", "background", Kind::Picture},
    {"BOOKMARK", "buttons", Kind::Names},
    {"VOLUME", "bar_off", Kind::Picture},
    {"VOLUME", "bar_on", Kind::Picture},
    {"VOLUME", "bar_xpos", Kind::Number},
    {"VOLUME", "bar_ypos", Kind::Number},
    {"VOLUME", "mute_off", Kind::Picture},
    {"VOLUME", "mute_on", Kind::Picture},
    {"VOLUME", "mute_xpos", Kind::Number},
    {"VOLUME", "mute_ypos", Kind::Number},
    {"VOLUME", "width", Kind::Size},
    {"VOLUME", "height", Kind::Size},
    {"TIME", "background", Kind::Picture},
    {"TIME", "current_xpos", Kind::Number},
    {"TIME", "current_ypos", Kind::Number},
    {"TIME", "total_xpos", Kind::Number},
    {"TIME", "total_ypos", Kind::Number},
    {"TIME", "slider_xpos", Kind::Number},
    {"TIME", "slider_ypos", Kind::Number},
    {"TIME_CURRENT", "width", Kind::Size},
    {"TIME_CURRENT", "height", Kind::Size},
    {"TIME_CURRENT", "font_size", Kind::Size},
    {"TIME_CURRENT", "font_weight", Kind::Size},
    {"TIME_CURRENT", "color", Kind::Color},
    {"TIME_CURRENT", "align", Kind::Alignment},
    {"TIME_CURRENT", "digits", Kind::Picture},
    {"TIME_TOTAL", "width", Kind::Size},
    {"TIME_TOTAL", "height", Kind::Size},
    {"TIME_TOTAL", "font_size", Kind::Size},
    {"TIME_TOTAL", "font_weight", Kind::Size},
    {"TIME_TOTAL", "color", Kind::Color},
    {"TIME_TOTAL", "align", Kind::Alignment},
    {"TIME_TOTAL", "digits", Kind::Picture},
    {"TIME_SLIDER", "width", Kind::Size},
    {"TIME_SLIDER", "height", Kind::Size},
    {"TIME_SLIDER", "track", Kind::Picture},
    {"TIME_SLIDER", "fill", Kind::Picture},
    {"TIME_SLIDER", "handle", Kind::Picture},
    {"TIME_SLIDER", "handle_press", Kind::Picture},
    {"TIME_SLIDER", "handle_disable", Kind::Picture},
    {"TIME_SLIDER", "marker_a", Kind::Picture},
    {"TIME_SLIDER", "marker_b", Kind::Picture},
    {"PLAYLIST_LISTBOX", "xpos", Kind::Number},
    {"PLAYLIST_LISTBOX", "ypos", Kind::Number},
    {"PLAYLIST_LISTBOX", "width", Kind::Size},
    {"PLAYLIST_LISTBOX", "height", Kind::Size},
    {"BOOKMARK_LISTBOX", "xpos", Kind::Number},
    {"BOOKMARK_LISTBOX", "ypos", Kind::Number},
    {"BOOKMARK_LISTBOX", "width", Kind::Size},
    {"BOOKMARK_LISTBOX", "height", Kind::Size},
    {"LISTBOX", "scroll_track", Kind::Picture},
    {"LISTBOX", "scroll_handle", Kind::Picture},
    {"LISTBOX", "cursor", Kind::Picture},
    {"LISTBOX", "cursor_focus", Kind::Picture},
};

/// A panel, and how the keys of its place in the group "MAIN" begin.
struct PanelRule {
    const char* group;
    const char* place;
    bool has_buttons;
};

constexpr PanelRule panel_rules[] = {
    {"VIDEO_TITLE", "title", true}, {"VIDEO_CONTROL", "control", true}, {"TIME", "time", false},
    {"PLAYLIST", "playlist", true}, {"BOOKMARK", "bookmark", true},
};

/// The buttons that the player acts on.
struct ButtonRule {
    const char* group;
    const char* names;
};

constexpr ButtonRule button_rules[] = {
    {"VIDEO_CONTROL",
     "play pause stop pageup pagedown open listopen bookmark bookmark_list repeatA repeatB repeatAB speed_down "
     "speed_normal speed_up mute setting close"},
    {"VIDEO_TITLE", "close dic"},
    {"PLAYLIST", "up down add minus close"},
    {"BOOKMARK", "up down add minus close"},
};

/// What follows a button's name in a key.
struct ButtonKeyRule {
    const char* suffix;
    Kind kind;
};

constexpr ButtonKeyRule button_key_rules[] = {
    {"_xpos", Kind::Number},   {"_ypos", Kind::Number},     {"_normal", Kind::Picture}, {"_focus", Kind::Picture},
    {"_press", Kind::Picture}, {"_disable", Kind::Picture}, {"_replaces", Kind::Names},
};

/// A small widget inside a panel.
struct IndicatorRule {
    const char* panel;
    const char* place;
    const char* group;
};

constexpr IndicatorRule indicator_rules[] = {
    {"VIDEO_CONTROL", "volume", "VOLUME"},
    {"TIME", "current", "TIME_CURRENT"},
    {"TIME", "total", "TIME_TOTAL"},
    {"TIME", "slider", "TIME_SLIDER"},
};

/// A list inside a panel.
struct ListBoxRule {
    const char* panel;
    const char* group;
};

constexpr ListBoxRule list_box_rules[] = {
    {"PLAYLIST", "PLAYLIST_LISTBOX"},
    {"BOOKMARK", "BOOKMARK_LISTBOX"},
};

/// Two pictures of one group that must have one size.
struct SameSizeRule {
    const char* group;
    const char* key;
    const char* model;
};

constexpr SameSizeRule same_size_rules[] = {
    {"VOLUME", "bar_on", "bar_off"},
    {"VOLUME", "mute_on", "mute_off"},
    {"TIME_SLIDER", "handle_press", "handle"},
    {"TIME_SLIDER", "handle_disable", "handle"},
};

/// A picture that the player looks for by its name, whatever the layout file says. It need not be there.
struct FixedPictureRule {
    const char* name;
    QSize size;        ///< that it must have; none where any will do
    const char* model; ///< the picture that it does not go without, nor in another size; null for none
};

constexpr FixedPictureRule fixed_picture_rules[] = {
    {"close_normal", {}, nullptr},
    {"close_focus", {}, "close_normal"},
    {"close_press", {}, "close_normal"},
    {"setting_title", {}, nullptr},
    {"DIC/popup_bg", {312, 192}, nullptr},
    {"DIC/search_bt", {260, 23}, nullptr},
    {"DIC/bt_popup_close", {140, 25}, nullptr},
    {"../SETTINGS/ver_video", {}, nullptr},
};

QString text_of(const char* text)
{
    return QString::fromLatin1(text);
}

QString size_text(const QSize& size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

QStringList words_of(const QString& value)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    return value.split(blanks, Qt::SkipEmptyParts);
}

const KeyRule* find_rule(const QString& group, const QString& key)
{
    const auto* found = std::find_if(std::begin(key_rules), std::end(key_rules), [&](const KeyRule& row) {
        return group == QLatin1String(row.group) && key == QLatin1String(row.key);
    });
    return found == std::end(key_rules) ? nullptr : found;
}

bool is_known_group(const QString& group)
{
    return std::any_of(std::begin(key_rules), std::end(key_rules),
                       [&](const KeyRule& row) { return group == QLatin1String(row.group); });
}

const ButtonRule* find_buttons(const QString& group)
{
    const auto* found = std::find_if(std::begin(button_rules), std::end(button_rules),
                                     [&](const ButtonRule& row) { return group == QLatin1String(row.group); });
    return found == std::end(button_rules) ? nullptr : found;
}

/// What a button's key is about, if @p key is a key of one of @p buttons.
std::optional<Kind> button_key_kind(const QString& key, const QStringList& buttons)
{
    for (const ButtonKeyRule& row : button_key_rules) {
        const QString suffix = text_of(row.suffix);
        if (key.endsWith(suffix) && buttons.contains(key.chopped(suffix.size())))
            return row.kind;
    }
    return std::nullopt;
}

} // namespace

SkinCheck::SkinCheck(const QString& directory) : m_directory(directory)
{
    while (m_directory.size() > 1 && m_directory.endsWith(QLatin1Char('/')))
        m_directory.chop(1);
    read_file();
    for (auto entry = m_groups.cbegin(); entry != m_groups.cend(); ++entry) {
        check_keys(entry.key(), entry.value());
        check_values(entry.key(), entry.value());
    }
    for (const PanelRule& row : panel_rules) {
        if (const Group* panel = group(text_of(row.group)))
            check_panel(text_of(row.group), *panel);
    }
    check_indicators();
    check_list_boxes();
    check_same_sizes();
    check_fixed_pictures();
    std::stable_sort(m_faults.begin(), m_faults.end(),
                     [](const Fault& left, const Fault& right) { return left.line < right.line; });
}

// Reading

void SkinCheck::read_file()
{
    QFile layout(file());
    if (!QFileInfo(layout).isFile() || !layout.open(QIODevice::ReadOnly)) {
        fault(1, QStringLiteral("no layout file that can be read"));
        return;
    }
    const QStringList lines = QString::fromUtf8(layout.readAll()).split(QLatin1Char('\n'));
    QString name;
    for (int index = 0; index < lines.size(); ++index) {
        const int line = index + 1;
        const QString text = lines.at(index).trimmed();
        if (text.isEmpty() || text.startsWith(QLatin1Char('#')) || text.startsWith(QLatin1Char(';')))
            continue;
        if (text.startsWith(QLatin1Char('['))) {
            const qsizetype close = text.indexOf(QLatin1Char(']'));
            name = close < 0 ? text.mid(1) : text.mid(1, close - 1);
            if (close < 0)
                fault(line, QStringLiteral("the group's name has no closing bracket"));
            if (!is_known_group(name))
                fault(line, QStringLiteral("unknown group \"%1\"").arg(name));
            else if (m_groups.contains(name))
                fault(line, QStringLiteral("group \"%1\" stands twice").arg(name));
            if (!m_groups.contains(name))
                m_groups.insert(name, {line, {}});
            continue;
        }
        const qsizetype equals = text.indexOf(QLatin1Char('='));
        if (equals <= 0) {
            fault(line, QStringLiteral("neither a group nor \"key = value\""));
            continue;
        }
        const QString key = text.left(equals).trimmed();
        if (name.isEmpty()) {
            fault(line, QStringLiteral("key \"%1\" stands before the first group").arg(key));
            continue;
        }
        QMap<QString, Entry>& entries = m_groups[name].entries;
        if (entries.contains(key))
            fault(line, QStringLiteral("key \"%1\" stands twice in group \"%2\"").arg(key, name));
        // As in the player, the last one counts.
        entries.insert(key, {line, text.mid(equals + 1).trimmed()});
    }
}

void SkinCheck::fault(int line, const QString& text)
{
    m_faults.push_back({line, text});
}

const SkinCheck::Group* SkinCheck::group(const QString& name) const
{
    const auto found = m_groups.constFind(name);
    return found == m_groups.cend() ? nullptr : &*found;
}

const SkinCheck::Entry* SkinCheck::entry(const QString& group_name, const QString& key) const
{
    const Group* const found = group(group_name);
    if (!found)
        return nullptr;
    const auto place = found->entries.constFind(key);
    return place == found->entries.cend() ? nullptr : &*place;
}

std::optional<int> SkinCheck::number(const Group& group, const QString& key) const
{
    const auto place = group.entries.constFind(key);
    if (place == group.entries.cend())
        return std::nullopt;
    bool good = false;
    const int value = place->value.toInt(&good);
    return good ? std::optional<int>(SkinLayout::bounded_position(value)) : std::nullopt;
}

int SkinCheck::number_of(const QString& group_name, const QString& key, int fallback) const
{
    const Group* const found = group(group_name);
    return found ? number(*found, key).value_or(fallback) : fallback;
}

QSize SkinCheck::picture_size(const Entry& entry)
{
    if (entry.value.isEmpty())
        return {};
    const auto known = m_picture_sizes.constFind(entry.value);
    if (known != m_picture_sizes.cend())
        return *known;
    const QSize size = picture_size_of(m_directory + QLatin1Char('/') + entry.value);
    m_picture_sizes.insert(entry.value, size);
    return size;
}

QSize SkinCheck::picture_size_of(const QString& path) const
{
    if (!QFileInfo(path).isFile())
        return {};
    QImageReader reader(path);
    const QSize size = reader.size();
    // The header of a damaged file may be whole.
    if (size.isValid() && std::max(size.width(), size.height()) <= SkinLayout::largest_side && reader.read().isNull())
        return {};
    return size;
}

QSize SkinCheck::picture_size(const QString& group_name, const QString& key)
{
    const Entry* const found = entry(group_name, key);
    const QSize size = found ? picture_size(*found) : QSize();
    return size.isValid() ? size : QSize(0, 0);
}

QStringList SkinCheck::button_names(const Group& group) const
{
    return words_of(group.entries.value(QStringLiteral("buttons")).value);
}

// Keys and values

void SkinCheck::check_keys(const QString& name, const Group& group)
{
    if (!is_known_group(name))
        return;
    const QStringList buttons = find_buttons(name) ? button_names(group) : QStringList();
    for (auto row = group.entries.cbegin(); row != group.entries.cend(); ++row) {
        if (!find_rule(name, row.key()) && !button_key_kind(row.key(), buttons))
            fault(row->line, QStringLiteral("unknown key \"%1\" in group \"%2\"").arg(row.key(), name));
    }
}

void SkinCheck::check_values(const QString& name, const Group& group)
{
    const QStringList buttons = find_buttons(name) ? button_names(group) : QStringList();
    for (auto row = group.entries.cbegin(); row != group.entries.cend(); ++row) {
        const KeyRule* const rule = find_rule(name, row.key());
        const std::optional<Kind> kind = rule ? rule->kind : button_key_kind(row.key(), buttons);
        if (!kind)
            continue;
        switch (*kind) {
        case Kind::Number:
        case Kind::Size: {
            const std::optional<int> value = number(group, row.key());
            if (!value)
                fault(row->line, QStringLiteral("\"%1\" is not a whole number").arg(row->value));
            else if (*kind == Kind::Size && *value <= 0)
                fault(row->line, QStringLiteral("\"%1\" must be above 0").arg(row.key()));
            break;
        }
        case Kind::Picture:
            check_picture(*row);
            break;
        case Kind::Color:
            if (!QColor(row->value).isValid())
                fault(row->line, QStringLiteral("\"%1\" is not a colour").arg(row->value));
            break;
        case Kind::Alignment:
            if (!QStringList{QStringLiteral("left"), QStringLiteral("center"), QStringLiteral("right")}.contains(
                    row->value))
                fault(row->line, QStringLiteral("\"%1\" is not left, center or right").arg(row->value));
            break;
        case Kind::Names:
            break;
        }
    }
}

void SkinCheck::check_picture(const Entry& entry)
{
    const QString path = m_directory + QLatin1Char('/') + entry.value;
    if (entry.value.isEmpty() || !QFileInfo(path).isFile()) {
        fault(entry.line, QStringLiteral("picture \"%1\" is missing").arg(entry.value));
        return;
    }
    const QSize size = picture_size(entry);
    if (!size.isValid())
        fault(entry.line, QStringLiteral("picture \"%1\" cannot be read").arg(entry.value));
    else if (std::max(size.width(), size.height()) > SkinLayout::largest_side)
        fault(entry.line, QStringLiteral("picture \"%1\" is %2: no side may be longer than %3")
                              .arg(entry.value, size_text(size))
                              .arg(SkinLayout::largest_side));
}

// Panels and buttons

void SkinCheck::check_panel(const QString& name, const Group& group)
{
    const auto* const rule = std::find_if(std::begin(panel_rules), std::end(panel_rules),
                                          [&](const PanelRule& row) { return name == QLatin1String(row.group); });
    const QString background_key = QStringLiteral("background");
    if (!group.entries.contains(background_key)) {
        fault(group.line, QStringLiteral("group \"%1\" has no background: the panel is not shown").arg(name));
        return;
    }
    const QSize size = picture_size(name, background_key);
    const QString place = text_of(rule->place);
    const QRect panel(QPoint(number_of(QStringLiteral("MAIN"), place + QLatin1String("_xpos"), -1),
                             number_of(QStringLiteral("MAIN"), place + QLatin1String("_ypos"), -1)),
                      size);
    if (!size.isEmpty() && !screen.contains(panel)) {
        const Entry* const position = entry(QStringLiteral("MAIN"), place + QLatin1String("_xpos"));
        fault(position ? position->line : group.line,
              QStringLiteral("panel \"%1\" (%2 at %3,%4) reaches off the screen of %5")
                  .arg(name, size_text(size))
                  .arg(panel.x())
                  .arg(panel.y())
                  .arg(size_text(screen.size())));
    }
    if (rule->has_buttons)
        check_buttons(name, group, size);
}

void SkinCheck::check_buttons(const QString& name, const Group& group, const QSize& panel)
{
    const auto list = group.entries.constFind(QStringLiteral("buttons"));
    if (list == group.entries.cend())
        return;
    const QStringList known = words_of(text_of(find_buttons(name)->names));
    QStringList seen;
    std::vector<Button> buttons;
    for (const QString& button_name : button_names(group)) {
        if (seen.contains(button_name)) {
            fault(list->line, QStringLiteral("button \"%1\" is named twice").arg(button_name));
            continue;
        }
        seen.append(button_name);
        if (!known.contains(button_name))
            fault(list->line, QStringLiteral("unknown button \"%1\" in group \"%2\"").arg(button_name, name));
        if (const std::optional<Button> button = check_button(button_name, group, panel))
            buttons.push_back(*button);
    }
    check_overlap(group, buttons);
}

std::optional<SkinCheck::Button> SkinCheck::check_button(const QString& name, const Group& group, const QSize& panel)
{
    const int list_line = group.entries.value(QStringLiteral("buttons")).line;
    const auto replaces = group.entries.constFind(name + QLatin1String("_replaces"));
    if (replaces != group.entries.cend() && (replaces->value == name || !button_names(group).contains(replaces->value)))
        fault(replaces->line, QStringLiteral("button \"%1\" replaces \"%2\", which is no other button of the panel")
                                  .arg(name, replaces->value));

    const auto normal = group.entries.constFind(name + QLatin1String("_normal"));
    if (normal == group.entries.cend()) {
        fault(list_line, QStringLiteral("button \"%1\" has no picture \"%1_normal\"").arg(name));
        return std::nullopt;
    }
    const QSize size = picture_size(*normal);
    for (const ButtonKeyRule& row : button_key_rules) {
        const auto other = group.entries.constFind(name + text_of(row.suffix));
        if (row.kind != Kind::Picture || other == group.entries.cend() || size.isEmpty())
            continue;
        const QSize other_size = picture_size(*other);
        if (other_size.isValid() && other_size != size)
            fault(other->line, QStringLiteral("picture \"%1\" is %2, but \"%3\" is %4")
                                   .arg(other->value, size_text(other_size), normal->value, size_text(size)));
    }

    const auto x = number(group, name + QLatin1String("_xpos"));
    const auto y = number(group, name + QLatin1String("_ypos"));
    if (!group.entries.contains(name + QLatin1String("_xpos")) ||
        !group.entries.contains(name + QLatin1String("_ypos")))
        fault(list_line, QStringLiteral("button \"%1\" has no place").arg(name));
    if (!x || !y || size.isEmpty())
        return std::nullopt;
    const QRect rectangle(QPoint(*x, *y), size);
    if (!panel.isEmpty() && !QRect(QPoint(0, 0), panel).contains(rectangle))
        fault(group.entries.value(name + QLatin1String("_xpos")).line,
              QStringLiteral("button \"%1\" reaches out of its panel").arg(name));
    return Button{name, rectangle};
}

QString SkinCheck::place_of(const QString& button, const Group& group) const
{
    QString place = button;
    for (qsizetype steps = button_names(group).size(); steps > 0; --steps) {
        const QString replaced = group.entries.value(place + QLatin1String("_replaces")).value;
        if (replaced.isEmpty())
            break;
        place = replaced;
    }
    return place;
}

void SkinCheck::check_overlap(const Group& group, const std::vector<Button>& buttons)
{
    for (std::size_t upper = 0; upper < buttons.size(); ++upper) {
        for (std::size_t lower = 0; lower < upper; ++lower) {
            const Button& one = buttons[lower];
            const Button& other = buttons[upper];
            if (one.rectangle.intersects(other.rectangle) && place_of(one.name, group) != place_of(other.name, group))
                fault(group.entries.value(other.name + QLatin1String("_xpos")).line,
                      QStringLiteral("buttons \"%1\" and \"%2\" stand on one spot").arg(one.name, other.name));
        }
    }
}

// What stands inside the panels

QSize SkinCheck::indicator_size(const QString& name)
{
    QSize size(0, 0);
    if (name == QLatin1String("VOLUME")) {
        const auto picture = [&](const QString& place, const QString& first, const QString& second) {
            const QSize one = picture_size(name, first);
            const QPoint corner(number_of(name, place + QLatin1String("_xpos"), 0),
                                number_of(name, place + QLatin1String("_ypos"), 0));
            return QRect(corner, one.isEmpty() ? picture_size(name, second) : one);
        };
        const QRect all =
            picture(QStringLiteral("bar"), QStringLiteral("bar_off"), QStringLiteral("bar_on"))
                .united(picture(QStringLiteral("mute"), QStringLiteral("mute_off"), QStringLiteral("mute_on")));
        size = QSize(all.right() + 1, all.bottom() + 1);
    } else if (name == QLatin1String("TIME_SLIDER")) {
        const QSize track = picture_size(name, QStringLiteral("track"));
        size = QSize(track.width(), std::max(track.height(), picture_size(name, QStringLiteral("handle")).height()));
    } else {
        const QSize digits = picture_size(name, QStringLiteral("digits"));
        size = QSize(digits.width() / TimeSkin::digit_cells * TimeSkin::widest_text, digits.height());
    }
    const int width = number_of(name, QStringLiteral("width"), 0);
    const int height = number_of(name, QStringLiteral("height"), 0);
    return QSize(width > 0 ? width : size.width(), height > 0 ? height : size.height());
}

void SkinCheck::check_indicators()
{
    for (const IndicatorRule& row : indicator_rules) {
        const QString panel_name = text_of(row.panel);
        const QString name = text_of(row.group);
        const QString place = text_of(row.place);
        const Group* const indicator = group(name);
        if (!indicator)
            continue;
        const QSize size = indicator_size(name);
        if (size.isEmpty()) {
            fault(indicator->line, QStringLiteral("\"%1\" has no size: it is not shown").arg(name));
            continue;
        }
        const QSize panel = picture_size(panel_name, QStringLiteral("background"));
        const QPoint corner(number_of(panel_name, place + QLatin1String("_xpos"), -1),
                            number_of(panel_name, place + QLatin1String("_ypos"), -1));
        if (!panel.isEmpty() && !QRect(QPoint(0, 0), panel).contains(QRect(corner, size))) {
            const Entry* const position = entry(panel_name, place + QLatin1String("_xpos"));
            fault(position ? position->line : indicator->line,
                  QStringLiteral("\"%1\" (%2) reaches out of its panel").arg(name, size_text(size)));
        }
    }
    for (const char* name : {"TIME_CURRENT", "TIME_TOTAL"}) {
        const Entry* const digits = entry(text_of(name), QStringLiteral("digits"));
        if (digits && picture_size(*digits).isValid() && picture_size(*digits).width() % TimeSkin::digit_cells != 0)
            fault(digits->line, QStringLiteral("picture \"%1\" is %2: its width must be a multiple of %3")
                                    .arg(digits->value, size_text(picture_size(*digits)))
                                    .arg(TimeSkin::digit_cells));
    }
}

void SkinCheck::check_list_boxes()
{
    for (const ListBoxRule& row : list_box_rules) {
        const QString name = text_of(row.group);
        const Group* const list_box = group(name);
        if (!list_box) {
            if (const Group* const panel = group(text_of(row.panel)))
                fault(panel->line, QStringLiteral("there is no group \"%1\": the panel has no list").arg(name));
            continue;
        }
        const QRect rectangle(number_of(name, QStringLiteral("xpos"), -1), number_of(name, QStringLiteral("ypos"), -1),
                              number_of(name, QStringLiteral("width"), 0),
                              number_of(name, QStringLiteral("height"), 0));
        const QSize panel = picture_size(text_of(row.panel), QStringLiteral("background"));
        if (rectangle.isEmpty())
            fault(list_box->line, QStringLiteral("\"%1\" has no size: the list is not shown").arg(name));
        else if (!panel.isEmpty() && !QRect(QPoint(0, 0), panel).contains(rectangle))
            fault(list_box->line, QStringLiteral("\"%1\" reaches out of its panel").arg(name));
    }
}

void SkinCheck::check_same_sizes()
{
    for (const SameSizeRule& row : same_size_rules) {
        const Entry* const other = entry(text_of(row.group), text_of(row.key));
        const Entry* const model = entry(text_of(row.group), text_of(row.model));
        if (!other || !model)
            continue;
        const QSize size = picture_size(*other);
        const QSize model_size = picture_size(*model);
        if (size.isValid() && model_size.isValid() && size != model_size)
            fault(other->line, QStringLiteral("picture \"%1\" is %2, but \"%3\" is %4")
                                   .arg(other->value, size_text(size), model->value, size_text(model_size)));
    }
}

void SkinCheck::check_fixed_pictures()
{
    const auto path_of = [this](const char* name) {
        return m_directory + QLatin1Char('/') + QLatin1String(name) + QLatin1String(".png");
    };
    // No line of the layout file is about them.
    constexpr int line = 1;
    for (const FixedPictureRule& row : fixed_picture_rules) {
        const QString name = QLatin1String(row.name) + QLatin1String(".png");
        const bool exists = QFileInfo(path_of(row.name)).isFile();
        const QSize size = picture_size_of(path_of(row.name));
        const QSize model_size = row.model ? picture_size_of(path_of(row.model)) : QSize();
        if (!exists && model_size.isValid())
            fault(line, QStringLiteral("picture \"%1\" is missing").arg(name));
        else if (exists && !size.isValid())
            fault(line, QStringLiteral("picture \"%1\" cannot be read").arg(name));
        else if (exists && row.size.isValid() && size != row.size)
            fault(
                line,
                QStringLiteral("picture \"%1\" is %2: it must be %3").arg(name, size_text(size), size_text(row.size)));
        else if (exists && model_size.isValid() && size != model_size)
            fault(line, QStringLiteral("picture \"%1\" is %2, but \"%3.png\" is %4")
                            .arg(name, size_text(size), QLatin1String(row.model), size_text(model_size)));
    }
}
