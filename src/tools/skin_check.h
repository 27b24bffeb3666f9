#pragma once

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QRect>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <vector>

/// Finds the faults of a skin directory: what the player would silently leave out or put in the wrong place.
class SkinCheck
{
public:
    /// A fault and the line of the layout file that it is about (from 1).
    struct Fault {
        int line;
        QString text;
    };

    /// Reads the skin in @p directory. Nothing is written.
    explicit SkinCheck(const QString& directory);

    /// The layout file that was read.
    QString file() const { return m_directory + QLatin1String("/config"); }
    /// What is wrong with the skin, in the order of the lines; empty for a good one.
    const std::vector<Fault>& faults() const { return m_faults; }

private:
    struct Entry {
        int line;
        QString value;
    };
    struct Group {
        int line;
        QMap<QString, Entry> entries;
    };
    struct Button {
        QString name;
        QRect rectangle;
    };

    void read_file();
    void check_keys(const QString& name, const Group& group);
    void check_values(const QString& name, const Group& group);
    void check_picture(const Entry& entry);
    void check_panel(const QString& name, const Group& group);
    void check_buttons(const QString& name, const Group& group, const QSize& panel);
    std::optional<Button> check_button(const QString& name, const Group& group, const QSize& panel);
    void check_overlap(const Group& group, const std::vector<Button>& buttons);
    void check_indicators();
    void check_list_boxes();
    void check_same_sizes();
    void check_fixed_pictures();

    void fault(int line, const QString& text);
    const Group* group(const QString& name) const;
    const Entry* entry(const QString& group, const QString& key) const;
    QStringList button_names(const Group& group) const;
    QString place_of(const QString& button, const Group& group) const;
    std::optional<int> number(const Group& group, const QString& key) const;
    int number_of(const QString& group, const QString& key, int fallback) const;
    QSize picture_size(const QString& group, const QString& key);
    QSize picture_size(const Entry& entry);
    QSize picture_size_of(const QString& path) const;
    QSize indicator_size(const QString& name);

    QString m_directory;
    QMap<QString, Group> m_groups;
    QHash<QString, QSize> m_picture_sizes;
    std::vector<Fault> m_faults;
};
