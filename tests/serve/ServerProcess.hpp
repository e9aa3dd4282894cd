#pragma once

// `refdoc serve --port 0` as a child process: started on a free loopback port, its address
// read from what it prints, stopped with SIGTERM. Header-only, for the serve suite.

#include <httplib.h>

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include <cerrno>
#include <csignal>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace refdoc::test {

class ServerProcess {
public:
    explicit ServerProcess(std::vector<std::string> args) {
        args.insert(args.begin(), {REFDOC_TOOL_PATH, "serve", "--port", "0"});
        std::vector<char*> argv;
        for (auto& arg : args) {
            argv.push_back(arg.data());
        }
        argv.push_back(nullptr);
        int pipeEnds[2];
        if (::pipe(pipeEnds) != 0) {
            throw std::runtime_error("pipe failed");
        }
        pid_ = ::fork();
        if (pid_ < 0) {
            throw std::runtime_error("fork failed");
        }
        if (pid_ == 0) {
            ::dup2(pipeEnds[1], 1);
            ::close(pipeEnds[0]);
            ::close(pipeEnds[1]);
            ::execv(argv[0], argv.data());
            ::_exit(127);
        }
        ::close(pipeEnds[1]);
        out_ = pipeEnds[0];
        // The address line: "Open http://127.0.0.1:PORT/ ...".
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (port_ == 0 && std::chrono::steady_clock::now() < deadline) {
            pollfd ready{out_, POLLIN, 0};
            if (::poll(&ready, 1, 1000) <= 0) {
                continue;
            }
            char buffer[256];
            const ssize_t n = ::read(out_, buffer, sizeof buffer);
            if (n <= 0) {
                break;
            }
            printed_.append(buffer, static_cast<std::size_t>(n));
            const std::size_t at = printed_.find("http://127.0.0.1:");
            const std::size_t slash = at == std::string::npos ? at : printed_.find('/', at + 17);
            if (slash != std::string::npos) {
                port_ = std::stoi(printed_.substr(at + 17, slash - at - 17));
            }
        }
        if (port_ == 0) {
            stop();
            throw std::runtime_error("the server printed no address: " + printed_);
        }
    }
    ~ServerProcess() { stop(); }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    int port() const { return port_; }
    httplib::Client client() const {
        httplib::Client client("127.0.0.1", port_);
        client.set_read_timeout(60, 0);
        return client;
    }

    // SIGTERM, then the exit status (-1 when it did not exit normally).
    int stop() {
        if (pid_ > 0) {
            ::kill(pid_, SIGTERM);
            int status = 0;
            while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
            }
            status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            pid_ = -1;
            ::close(out_);
        }
        return status_;
    }

private:
    pid_t pid_ = -1;
    int out_ = -1;
    int port_ = 0;
    int status_ = -1;
    std::string printed_;
};

} // namespace refdoc::test
