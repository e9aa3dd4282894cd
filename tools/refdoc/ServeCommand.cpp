// refdoc serve: the server's lifecycle. The loaded data is kept per language (ServeSnapshots),
// requests are routed to their views (ServeRouter, ServeViews).

#include "Commands.hpp"
#include "Host.hpp"
#include "ServeRouter.hpp"
#include "ServeSnapshots.hpp"

#include <httplib.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <iostream>
#include <memory>
#include <thread>

#include <pthread.h>
#include <sys/socket.h>

namespace refdoc::tool {
namespace {

// Every connection holds a worker for as long as it is open, idle keep-alive ones included, so
// there are many workers and an idle connection is closed soon.
constexpr std::size_t kWorkers = 64;
constexpr time_t kIdleSeconds = 2;
// Connections the kernel holds while every worker is busy. Debian's cpp-httplib is a compiled
// library that listens with room for 5, so a burst of connections overflowed it (the kernel
// drops the handshakes it has no room for, and clients retry a second later): once bound, the
// socket listens again with this room.
constexpr int kBacklog = 128;

// Without SO_REUSEPORT, which cpp-httplib sets by default: a second server on a port in use
// must fail rather than share the port's connections with the first.
void socketOptions(socket_t sock) {
    const int yes = 1;
    ::setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
}

struct Options {
    HostOptions host;
    std::uint16_t port = 8737;
    std::string bind = "127.0.0.1";
};

int run(const Options& options, std::ostream& out, std::ostream& err) {
    const std::uint16_t port = options.port;
    const std::string& bind = options.bind;
    HostSettings settings = resolveHostSettings(options.host);
    applyHostSettings(settings);
    if (std::find(settings.supportedLanguages.begin(), settings.supportedLanguages.end(), settings.language) ==
        settings.supportedLanguages.end()) {
        settings.supportedLanguages.push_back(settings.language);
    }
    serve::SnapshotCache cache(std::move(settings));

    // SIGINT and SIGTERM are taken by one thread, which stops the server; every other thread,
    // the server's pool included, starts with them blocked.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    httplib::Server server;
    server.new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };
    socket_t listening = INVALID_SOCKET; // the last socket made: the bound one when binding succeeds
    server.set_socket_options([&listening](socket_t sock) {
        socketOptions(sock);
        listening = sock;
    });
    server.set_keep_alive_timeout(kIdleSeconds);
    server.set_payload_max_length(64 * 1024);
    server.set_pre_routing_handler([&cache](const httplib::Request& request, httplib::Response& response) {
        try {
            serve::respond(cache, request, response);
        } catch (const std::exception& e) {
            serve::respondWithError(cache, e.what(), response);
        }
        return httplib::Server::HandlerResponse::Handled;
    });

    errno = 0;
    const int bound = port == 0 ? server.bind_to_any_port(bind) : (server.bind_to_port(bind, port) ? port : -1);
    if (bound < 0) {
        const int why = errno;
        err << "refdoc: cannot listen on " << bind << " port " << port;
        if (why == EADDRINUSE) {
            err << ": the port is in use (another server runs there; --port picks another one)";
        } else if (why != 0) {
            err << ": " << std::strerror(why);
        }
        err << '\n';
        return kExitUsage;
    }
    if (::listen(listening, kBacklog) != 0) {
        err << "refdoc: cannot listen on " << bind << " port " << bound << ": " << std::strerror(errno) << '\n';
        return kExitProblem;
    }
    const std::string host = bind.find(':') != std::string::npos ? "[" + bind + "]" : bind;
    out << "refdoc serve: " << cache.settings().root.string()
        << (cache.settings().sampleRoot ? " (bundled sample)" : "") << "\nOpen http://" << host << ':' << bound
        << "/ (Ctrl-C stops the server)" << std::endl;

    std::thread stopper([&server, stopSignals] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        server.stop();
    });
    const bool listened = server.listen_after_bind();
    // Wakes the stopper when the server ended on its own.
    ::kill(::getpid(), SIGTERM);
    stopper.join();
    if (!listened && server.is_running()) {
        err << "refdoc: the server stopped with an error\n";
        return kExitProblem;
    }
    out << "refdoc serve: stopped" << std::endl;
    return kExitOk;
}

} // namespace

Command serveCommand() {
    Command command;
    command.name = "serve";
    command.summary = "show the documentation root in a web browser, reloaded when its files change";
    command.help = "Usage: refdoc serve [options]\n"
                   "\n"
                   "Serves a local web view of the documentation root until interrupted (Ctrl-C): the\n"
                   "products of the lookup load with a language switch, a name search, every reference\n"
                   "page with its links and anchors, and the problems view, which lists what 'refdoc check'\n"
                   "reports. What it loads is kept per language and loaded again when a data file's\n"
                   "name, size or modification time changes, so an edited file shows on reload.\n"
                   "It only answers GET and HEAD requests and writes nothing.\n"
                   "\n"
                   "Options:\n"
                   "  --port N                 port to listen on (default: 8737; 0 picks a free one)\n"
                   "  --bind ADDRESS           address to listen on (default: 127.0.0.1, this machine only).\n"
                   "                           Another address, such as 0.0.0.0, lets every machine that can\n"
                   "                           reach it read the documentation root's data and its file\n"
                   "                           paths, without any password\n" +
                   hostOptionsHelp();
    command.define = [](CLI::App& app) -> Runner {
        auto options = std::make_shared<Options>();
        addHostOptions(app, options->host);
        addValueOption(app, "--port", options->port)
            ->check(toolCheck(
                [](const std::string& value) {
                    unsigned port = 0;
                    const auto [next, error] = std::from_chars(value.data(), value.data() + value.size(), port);
                    return error == std::errc() && next == value.data() + value.size() && port <= 65535
                               ? std::string()
                               : "needs a number from 0 to 65535, not '" + value + "'";
                },
                "N"));
        addValueOption(app, "--bind", options->bind)
            ->check(
                toolCheck([](const std::string& value) { return value.empty() ? "needs an address" : std::string(); },
                          "ADDRESS"));
        return [options](std::ostream& out, std::ostream& err) { return run(*options, out, err); };
    };
    return command;
}

} // namespace refdoc::tool
