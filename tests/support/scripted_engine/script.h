#pragma once

#include "media_probe.h"
#include "media_types.h"
#include "subtitle.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// What a test has set and what was asked of the engine. One for the process; outlives the players; any thread.
class Script
{
public:
    using Lines = std::shared_ptr<const std::vector<Subtitle>>;

    static Script& instance();

    void clear();

    void write(const QString& line, bool question = false);
    QStringList log(bool with_questions) const;
    void clear_log();

    void set_result(const QString& operation, RaskStatus status, bool once);
    /// Writes the call down and takes what it is to answer.
    RaskStatus call(const QString& operation, const QString& arguments = QString());
    /// The same for a question that may fail.
    RaskStatus ask(const QString& operation, const QString& arguments);

    void set_info(const QString& group, const QString& item, const QString& text);
    void remove_info(const QString& group);
    QString info(const QString& group, const QString& item) const;
    bool has_group(const QString& group) const;
    Time film_length() const;

    void set_subtitles(unsigned track, std::vector<Subtitle> lines);
    Lines subtitles(unsigned track) const;
    void set_summary(std::optional<MediaSummary> summary);
    std::optional<MediaSummary> summary() const;
    void set_busy(std::optional<bool> busy);
    std::optional<bool> busy() const;
    void set_automatic(bool on);
    bool automatic() const;

private:
    struct LogLine {
        QString text;
        bool question;
    };
    struct Settings {
        QMap<QString, RaskStatus> results;
        QMap<QString, RaskStatus> next_results;
        QMap<QString, QMap<QString, QString>> infos;
        std::array<Lines, most_subtitle_tracks> subtitles;
        std::optional<MediaSummary> summary;
        std::optional<bool> busy;
        bool automatic = true;
    };

    Script();
    static Settings ten_second_film();
    RaskStatus take_result(const QString& operation);

    mutable std::mutex m_mutex; ///< guards all below
    std::vector<LogLine> m_log;
    Settings m_settings;
};
