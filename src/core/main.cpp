#include "engine_loader.h"
#include "file_manager.h"
#include "file_manager_folder.h"
#include "qpe_application.h"
#include "tavel_video.h"
#include "translation.h"

#include <malloc.h>
#include <memory>

int main(int argc, char** argv)
{
    // One heap for all threads: the engine's many threads allocate little, and a heap for each costs some megabytes.
    mallopt(M_ARENA_MAX, 1);
    // Large blocks stay apart from the heap, whatever was freed before: what a long film list or a long file of
    // subtitles needs for a moment goes back to the system.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    const auto films = [](const QString& path) { return films_behind(path, FileManager::most_films); };
    QPEApplication application(argc, argv, films);
    begin_to_load_engine();
    install_translation(application);
    const auto window = std::make_unique<TavelVideo>(nullptr, "tavel_video", 16);
    application.showMainWidget(window.get());
    QObject::connect(&application, SIGNAL(flush()), window.get(), SLOT(flush_slot()));
    QObject::connect(&application, SIGNAL(reload()), window.get(), SLOT(reload_slot()));
    QPEApplication::exec();
    return 0;
}
