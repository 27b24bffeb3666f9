#include "engine_loader.h"
#include "file_manager.h"
#include "file_manager_folder.h"
#include "heap.h"
#include "qpe_application.h"
#include "tavel_video.h"
#include "translation.h"

#include <memory>

int main(int argc, char** argv)
{
    set_up_heap();
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
