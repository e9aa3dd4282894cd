#pragma once

// `refdoc serve --port 0` as a child process: started on a free loopback port, its address
// read from what it prints, stopped with SIGTERM. Header-only, for the serve suite.

#include <httplib.h>

#include <gtest/gtest.h>

#include <boost/process/args.hpp>
#include <boost/process/child.hpp>
#include <boost/process/io.hpp>
#include <boost/process/pipe.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <csignal>

#include <sys/wait.h>

namespace refdoc::test {

class ServerProcess {
public:
    explicit ServerProcess(std::vector<std::string> args) {
        args.insert(args.begin(), {"serve", "--port", "0"});
        child_ = boost::process::child(std::string(REFDOC_TOOL_PATH), boost::process::args(args),
                                       boost::process::std_out > printed_);
        // The address line: "Open http://127.0.0.1:PORT/ ...". A server that fails exits, which
        // ends its output.
        const std::string prefix = "http://127.0.0.1:";
        for (std::string line; port_ == 0 && std::getline(printed_, line);) {
            const std::size_t at = line.find(prefix);
            if (at != std::string::npos) {
                port_ = std::stoi(line.substr(at + prefix.size()));
            }
        }
        if (port_ == 0) {
            stop();
            throw std::runtime_error("the server printed no address");
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
        if (child_.valid() && !status_) {
            ::kill(child_.id(), SIGTERM);
            child_.wait();
            const int status = child_.native_exit_code();
            status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        return status_.value_or(-1);
    }

    // GETs `path` and expects status 200, every text of `shown` in the body and none of `hidden`;
    // the body, for more checks.
    std::string expectView(const std::string& path, const std::vector<std::string>& shown,
                           const std::vector<std::string>& hidden = {}) const {
        SCOPED_TRACE(path);
        const auto response = client().Get(path);
        if (!response) {
            ADD_FAILURE() << "no response";
            return {};
        }
        EXPECT_EQ(response->status, 200);
        for (const auto& text : shown) {
            EXPECT_NE(response->body.find(text), std::string::npos) << text << " not in\n" << response->body;
        }
        for (const auto& text : hidden) {
            EXPECT_EQ(response->body.find(text), std::string::npos) << text << " in\n" << response->body;
        }
        return response->body;
    }

private:
    boost::process::ipstream printed_;
    boost::process::child child_;
    int port_ = 0;
    std::optional<int> status_; // set once stopped
};

} // namespace refdoc::test
