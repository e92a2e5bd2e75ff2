#include "support/YabaiClient.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <fstream>
#include <utility>

#include "bridges/YabaiBridge.h"

namespace tessaspaces {

YabaiClient::YabaiClient(std::filesystem::path folder) : folder_(std::move(folder)) {
  YabaiBridge::forgetEverything();
  YabaiBridge::useCandidatePaths({first(), second()});
}

YabaiClient::~YabaiClient() {
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child was left";
  YabaiBridge::forgetEverything();
}

std::string YabaiClient::script() const {
  return "#!/bin/sh\n"
         "cd " +
         folder_.string() +
         "\n"
         "{ printf '%s\\n' \"$@\"; echo; } >> calls\n"
         "[ ! -e \"on $*\" ] || . \"./on $*\"\n";
}

void YabaiClient::putFile(const std::string& path, std::string_view text, bool executable) {
  std::ofstream(path + ".new") << text;
  using std::filesystem::perms;
  std::filesystem::permissions(path + ".new", executable ? perms::owner_all : perms::owner_read);
  std::filesystem::rename(path + ".new", path);
}

void YabaiClient::on(const std::string& arguments, std::string_view commands) const {
  std::ofstream(folder_ / ("on " + arguments)) << commands;
}

void YabaiClient::answerQuery(std::string_view json) const {
  on("-m query --spaces", "cat <<'END'\n" + std::string(json) + "\nEND\n");
}

std::vector<YabaiClient::Arguments> YabaiClient::takeCalls() const {
  std::vector<Arguments> calls;
  std::ifstream file(folder_ / "calls");
  Arguments arguments;
  for (std::string line; std::getline(file, line);) {
    if (line.empty()) {
      calls.push_back(std::exchange(arguments, {}));
    } else {
      arguments.push_back(line);
    }
  }
  std::filesystem::remove(folder_ / "calls");
  return calls;
}

}  // namespace tessaspaces
