// ovix-demo: a small GTK game that integrates the SDK through its public calls only — the splash,
// the login page, the floating and warning buttons, the HUD's purchases, restore, user info and
// logout, and every SDK event in an on-screen log. The backend is the emulator, started in this
// process on a free loopback port unless --backend names one.
//
//   ovix_demo                          play; close the window to quit
//   ovix_demo --tour [--out DIR]       the scripted tour: one PNG per step in DIR, exit 0 only
//                                      when every step saw what it waited for
//   ovix_demo --backend URL            another backend (an ovix-emulator already running)
//   ovix_demo --catalog FILE           another sandbox store catalog
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "DemoGame.h"
#include "DemoTour.h"
#include "FilePicker.h"
#include "emulator/EmulatorServer.h"
#include "ovix/platform/SandboxStore.h"

namespace {

struct Arguments {
    bool tour = false;
    std::filesystem::path out = "ovix-demo-tour";
    std::string backend;
    std::filesystem::path catalog;
};

bool parse(int argc, char** argv, Arguments& arguments) {
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const bool hasValue = i + 1 < argc;
        if (option == "--tour") {
            arguments.tour = true;
        } else if (option == "--out" && hasValue) {
            arguments.out = argv[++i];
        } else if (option == "--backend" && hasValue) {
            arguments.backend = argv[++i];
        } else if (option == "--catalog" && hasValue) {
            arguments.catalog = argv[++i];
        } else {
            std::cerr << "usage: ovix_demo [--tour] [--out DIR] [--backend URL] [--catalog FILE]\n";
            return false;
        }
    }
    return true;
}

// The product ids of the catalog, in its order: one HUD button each.
std::vector<std::string> catalogProducts(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    std::vector<std::string> ids;
    const auto catalog = ovix::Value::fromJson(text.str());
    const auto* products = catalog ? catalog->find("products") : nullptr;
    if (products && products->asArray()) {
        for (const auto& product : *products->asArray()) {
            if (auto id = product.stringAt("id")) {
                ids.push_back(*id);
            }
        }
    }
    return ids;
}

std::unique_ptr<ovix::emulator::EmulatorServer> startEmulator(const std::filesystem::path& dataDirectory) {
    ovix::emulator::EmulatorServer::Options options;
    options.port = 0;
    options.dataDirectory = dataDirectory;
    options.config =
        ovix::emulator::EmulatorConfig::load(std::filesystem::path(OVIX_EMULATOR_DATA_DIR) / "config.json");
    return std::make_unique<ovix::emulator::EmulatorServer>(std::move(options));
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    if (!parse(argc, argv, arguments)) {
        return 2;
    }
    if (arguments.catalog.empty()) {
        const char* named = std::getenv(std::string(ovix::platform::SandboxStore::kCatalogVariable).c_str());
        arguments.catalog = named ? named : OVIX_DEMO_DIR "/sandbox-store.json";
    }
    // The desktop platform's store reads its catalog from here.
    setenv(std::string(ovix::platform::SandboxStore::kCatalogVariable).c_str(), arguments.catalog.c_str(), 1);
    if (!gtk_init_check()) {
        std::cerr << "ovix_demo: no display (scripts/demo runs the tour under a private Xvfb)\n";
        return 2;
    }

    const std::filesystem::path work =
        arguments.tour ? arguments.out : std::filesystem::path(g_get_user_cache_dir()) / "ovix-demo";
    std::error_code ignored;
    if (arguments.tour) {
        std::filesystem::remove_all(arguments.out, ignored);  // a tour starts with no session and no PNGs
    }
    std::filesystem::create_directories(work, ignored);

    std::unique_ptr<ovix::emulator::EmulatorServer> emulator;
    demo::DemoGame::Options options;
    options.backendUrl = arguments.backend;
    if (options.backendUrl.empty()) {
        try {
            emulator = startEmulator(work / "emulator-data");
        } catch (const std::exception& error) {
            std::cerr << "ovix_demo: the emulator did not start: " << error.what() << "\n";
            return 2;
        }
        options.backendUrl = emulator->accountsUrl();
        std::printf("ovix_demo: emulator at %s (players player1/ovix123, player2/ovix456)\n",
                    options.backendUrl.c_str());
    }
    options.productIds = catalogProducts(arguments.catalog);
    options.storePath = arguments.tour ? (work / "sdk-store.sqlite").string() : "";
    auto picker = std::make_shared<demo::FilePicker>(std::vector<std::filesystem::path>{});
    if (arguments.tour) {
        options.imagePicker = picker;
    }

    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    GtkWidget* window = gtk_window_new();
    gtk_window_set_title(GTK_WINDOW(window), "Ovix demo");
    gtk_window_set_default_size(GTK_WINDOW(window), 960, 600);
    g_signal_connect(window, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer data) -> gboolean {
                         g_main_loop_quit(static_cast<GMainLoop*>(data));
                         return TRUE;  // the window goes after the SDK lets go of it
                     }),
                     loop);

    auto log = std::make_shared<demo::EventLog>([](const std::string& line) {
        std::printf("%s\n", line.c_str());
        std::fflush(stdout);
    });
    auto game = std::make_shared<demo::DemoGame>(GTK_WINDOW(window), options, log);
    gtk_window_present(GTK_WINDOW(window));

    std::unique_ptr<demo::DemoTour> tour;
    if (arguments.tour) {
        tour = std::make_unique<demo::DemoTour>(*game, picker, arguments.out.string(), loop);
        tour->begin();
    } else {
        game->start();
    }
    g_main_loop_run(loop);

    const bool passed = !tour || tour->passed();
    tour.reset();
    game.reset();
    gtk_window_destroy(GTK_WINDOW(window));
    g_main_loop_unref(loop);
    return passed ? 0 : 1;
}
