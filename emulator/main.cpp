// ovix-emulator: the publisher backend on this machine, for developing and testing a game's
// integration without the real hosts. See docs/emulator.md.
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "emulator/EmulatorServer.h"

namespace {

constexpr const char* kUsage = R"(usage: ovix-emulator [options]
  --port N            accounts host port (and graph host when shared), default 8080; 0 for any free port
  --graph-port N      serve the graph host on its own port (default: on the accounts port)
  --host ADDRESS      address to bind, default 127.0.0.1
  --config FILE       config JSON, default the shipped demo config
  --data-dir DIR      uploads and the TLS authority, default ./ovix-emulator-data
  --fault ROUTE=FAULT  inject a fault, e.g. news=status:503, upload=latency:2000,drop (repeatable)
  --tls               serve HTTPS with a certificate from the emulator's own authority
  --quiet             do not print the request log
routes: login signin device userinfo eligibility news upload image
)";

struct Arguments {
    ovix::emulator::EmulatorServer::Options options;
    std::filesystem::path configPath = std::filesystem::path(OVIX_EMULATOR_DATA_DIR) / "config.json";
    std::vector<std::string> faults;
    bool quiet = false;
};

int portArgument(const std::string& text) {
    std::size_t used = 0;
    const int port = std::stoi(text, &used);
    if (used != text.size() || port < 0 || port > 65535) {
        throw std::invalid_argument("not a port: " + text);
    }
    return port;
}

Arguments parse(int argc, char** argv) {
    Arguments arguments;
    arguments.options.port = 8080;
    arguments.options.dataDirectory = "ovix-emulator-data";
    for (int i = 1; i < argc; ++i) {
        const std::string flag = argv[i];
        auto value = [&]() -> std::string {
            if (i + 1 >= argc) {
                throw std::invalid_argument(flag + " needs a value");
            }
            return argv[++i];
        };
        if (flag == "--port") {
            arguments.options.port = portArgument(value());
        } else if (flag == "--graph-port") {
            arguments.options.graphPort = portArgument(value());
        } else if (flag == "--host") {
            arguments.options.host = value();
        } else if (flag == "--config") {
            arguments.configPath = value();
        } else if (flag == "--data-dir") {
            arguments.options.dataDirectory = value();
        } else if (flag == "--fault") {
            arguments.faults.push_back(value());
        } else if (flag == "--tls") {
            arguments.options.tls = true;
        } else if (flag == "--quiet") {
            arguments.quiet = true;
        } else {
            throw std::invalid_argument("unknown option " + flag);
        }
    }
    return arguments;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--help" || std::string(argv[i]) == "-h") {
            std::cout << kUsage;
            return 0;
        }
    }
    // Every thread started from here on inherits the mask; the main thread waits for the signal.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    try {
        auto arguments = parse(argc, argv);
        arguments.options.config = ovix::emulator::EmulatorConfig::load(arguments.configPath);
        if (!arguments.quiet) {
            arguments.options.printer = [](const std::string& line) { std::cout << line << std::endl; };
        }
        ovix::emulator::EmulatorServer server(std::move(arguments.options));
        for (const auto& fault : arguments.faults) {
            server.faults().setFromText(fault);
        }
        std::cout << "ovix-emulator: accounts host " << server.accountsUrl() << ", graph host "
                  << server.graphUrl() << "\n  config " << arguments.configPath.string() << "\n  admin "
                  << server.accountsUrl() << "/_emulator/log, /_emulator/faults, /_emulator/devices\n";
        if (!server.caPath().empty()) {
            std::cout << "  TLS authority " << server.caPath().string()
                      << " (trust it in the SDK: OVIX_CA_BUNDLE=" << server.caPath().string() << ")\n";
        }
        if (server.graphUrl() == server.accountsUrl()) {
            std::cout << "  in the game: Environment::emulator(\"" << server.accountsUrl() << "\")"
                      << std::endl;
        } else {
            std::cout << "  in the game: Environment{\"" << server.accountsUrl() << "\", \""
                      << server.graphUrl() << "\"}" << std::endl;
        }
        int received = 0;
        sigwait(&stopSignals, &received);
        std::cout << "ovix-emulator: stopping" << std::endl;
    } catch (const std::exception& error) {
        std::cerr << "ovix-emulator: " << error.what() << "\n" << kUsage;
        return 2;
    }
    return 0;
}
