#include "support/run_program.h"

#include "support/temp_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

namespace pelorin::test {

namespace {

std::string Quoted(const std::string& text) {
    std::string out = "'";
    for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

std::string Contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

ProgramResult RunProgram(const std::string& name, const std::vector<std::string>& arguments, const std::string& folder,
                         const std::string& prefix) {
    const TempFolder streams;
    // A person's own settings must not show in a test; `prefix` may name another home.
    std::string command = "export HOME=" + Quoted(streams.Path()) +
                          " XDG_CONFIG_HOME= XDG_DATA_HOME= XDG_CACHE_HOME=; cd " + Quoted(folder) + " && { " + prefix +
                          " " + Quoted(std::string(PELORIN_BIN_DIR) + "/" + name);
    for (const auto& argument : arguments) command += " " + Quoted(argument);
    command += "; } >" + Quoted(streams.Path("out")) + " 2>" + Quoted(streams.Path("err")) + " </dev/null";
    const int status = std::system(command.c_str());
    ProgramResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = Contents(streams.Path("out"));
    result.err = Contents(streams.Path("err"));
    return result;
}

} // namespace pelorin::test
