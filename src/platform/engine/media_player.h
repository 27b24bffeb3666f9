#pragma once

#include "media_callback.h"
#include "media_types.h"
#include "subtitle.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

/// Plays one film at a time and reports to a MediaCallback.
///
/// All operations are called from one thread, whichever made the object, and return a status, 0 for success, unless
/// they say otherwise. Each of them returns within a bounded time whatever the file or the disk does; the reports they
/// lead to, their order and the bounds are the table in docs/engine.md. Calling an operation in a state in which it
/// makes no sense is a non-zero status and changes nothing.
class MediaPlayer
{
public:
    /// @param callback receives all reports until release(); not owned, must outlive that call. May be null.
    explicit MediaPlayer(MediaCallback* callback);
    /// Does what release() does.
    virtual ~MediaPlayer();
    MediaPlayer(const MediaPlayer&) = delete;
    MediaPlayer& operator=(const MediaPlayer&) = delete;

    /// Makes sure that the playing library runs. May be called at any time; an open file stays open and plays on.
    unsigned initialize();

    /// Loads the open file for playback and waits until its first frame can be shown. Opens @p file_name first when it
    /// is not the open file. Afterwards the film rests on its first frame.
    virtual unsigned prepare(const char* file_name);
    /// Ends playback and forgets the file. No report comes after it has returned. 0 without a file too.
    virtual unsigned close();
    /// Starts playback, resumes it after pause(), or ends a scan where it has come to.
    virtual unsigned play();
    /// Holds the picture. Ends a scan where it has come to.
    virtual unsigned pause();
    /// Goes to @p target (milliseconds; clamped to the film), playing or paused as before. Ends with
    /// StreamState::Started, also when the file does not let itself be sought in.
    virtual unsigned seek(SeekMode mode, Time target);
    /// Walks the key frames towards the beginning at @p rate times normal speed (1 to 16), without sound.
    virtual unsigned scan_backward(int rate);
    /// Walks the key frames towards the end at @p rate times normal speed (1 to 16), without sound.
    virtual unsigned scan_forward(int rate);
    /// Places the picture on the video plane, in pixels of the output.
    virtual unsigned set_video_window(int x, int y, int width, int height);
    /// @param mode an AspectMode; others count as AspectMode::Keep.
    virtual unsigned set_aspect(int mode);
    /// Sets a Parameter from @p size bytes at @p value, which is copied.
    virtual unsigned set_parameter(int number, const void* value, unsigned size);
    /// Closes the file and gives back all threads, memory and descriptors. Afterwards only the destructor makes sense.
    virtual unsigned release();
    /// One step faster, slower, or back to normal (a SpeedCode). A step past 50 % or 200 % is refused. Pitch is kept.
    virtual unsigned set_speed(int code);
    /// Chooses the stream of a StreamKind; tracks count from 1.
    virtual unsigned select_stream(int kind, int track);
    /// Looks into a file and makes it the open one, in the place of any other. Refuses what has no picture.
    virtual unsigned open(const char* file_name);
    /// @return whether the open file has the group "container", "video" or "audio". False without an open file.
    virtual bool has_info(const char* group);
    /// @return the text of an item of the open file, empty when there is none.
    ///
    /// "container": "name", "audio_streams", "subtitle_streams"; "video": "name", "time" (milliseconds), "width",
    /// "height", "framerate"; "audio": "name", "channels", "sample_rate".
    virtual QString get_info(const char* group, const char* item);
    /// @param track 0 to 7
    /// @return that track's lines, sorted by start, or null while or when there are none. The list never changes and
    /// lives until the next open().
    virtual const std::vector<Subtitle>* get_subtitles(unsigned track);

    /// Answers a yes-or-no Query. Query::Busy: is a film playing, being scanned or sought in?
    virtual unsigned query(int number, bool* answer);
    /// Switches an Option. Option::DigitalOutput hands compressed sound to a digital output; refused where there is
    /// none.
    virtual unsigned set_option(int option, bool on);
    /// @return the speed that set_speed() has come to, in percent.
    virtual int get_speed();
    /// @param hook called on a thread of the engine's when the open file's own subtitle streams, or large subtitle
    /// files beside it, have been read, so that get_subtitles() has more to hand over. Empty removes it; it is not
    /// running any more when this returns.
    virtual void set_subtitles_ready_hook(std::function<void()> hook);

private:
    class Private;
    std::unique_ptr<Private> d;
};
