#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace tavrin {

/// Runs another program to its end and takes what it prints. Standard input is empty, standard error dropped.
/// The child has a process group of its own, the default treatment of SIGPIPE and none of this program's
/// descriptors. Any thread; blocks.
struct ChildProcess {
    struct Request {
        /// The program, by path or sought in PATH, and its arguments.
        std::vector<std::string> arguments;
        /// Set on top of this program's environment.
        std::map<std::string, std::string> environment;
        /// What is printed beyond this is read and dropped.
        std::size_t outputLimit = std::size_t{16} * 1024 * 1024;
        /// Then the child and all of its process group are killed.
        std::chrono::milliseconds timeout = std::chrono::seconds(60);
    };
    struct Result {
        int error = 0; ///< errno value when it could not be started
        bool timedOut = false;
        int exitStatus = -1; ///< -1 when it did not start or was ended by a signal
        std::string output;
        bool outputWasCut = false;

        [[nodiscard]] bool succeeded() const { return error == 0 && !timedOut && exitStatus == 0; }
    };

    [[nodiscard]] static Result run(const Request& request);
};

} // namespace tavrin
