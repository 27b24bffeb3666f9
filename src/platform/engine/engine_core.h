#pragma once

#include "picture_output.h"
#include "picture_size.h"

#include <mpv/client.h>

#include <QByteArray>
#include <QByteArrayList>

#include <memory>
#include <optional>

/// One running copy of the playing library with its picture output.
///
/// Nothing here waits for the library but creation and destruction: commands and settings are handed over and answered
/// by events.
class EngineCore
{
public:
    /// @return null when the library does not start.
    static std::unique_ptr<EngineCore> create();
    /// Ends the library and its threads. Blocks for as long as the library waits for a disk.
    ~EngineCore();
    EngineCore(const EngineCore&) = delete;
    EngineCore& operator=(const EngineCore&) = delete;

    mpv_handle* handle() const { return m_handle; }
    PictureOutput& picture() { return *m_picture; }

    /// Hands over a command. @param id comes back in the event that answers it; 0 when nobody asks
    /// @return false when the library takes no more.
    bool command(const QByteArrayList& words, std::uint64_t id = 0);
    void set(const char* property, const QByteArray& value);
    void set(const char* property, double value);
    /// Whether films are heard. One that is loaded goes on, with sound that comes or goes. Off in the beginning.
    void use_sound(bool on);
    bool uses_sound() const { return m_uses_sound; }
    /// From the next frame on. Chosen for no scaling in the beginning.
    void use_scaler(picture_size::Scaling scaling);
    /// Asks for a value that comes back in an event with @p id. @return false when the library takes no more.
    bool ask(const char* property, std::uint64_t id, mpv_format format = MPV_FORMAT_DOUBLE);
    void watch(const char* property, mpv_format format, std::uint64_t id);

private:
    EngineCore() = default;

    mpv_handle* m_handle = nullptr;
    std::optional<PictureOutput> m_picture;
    bool m_uses_sound = false;
    picture_size::Scaling m_scaling = picture_size::Scaling::None;
};
