#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessaspaces {

/// A yabai client that is really run: a shell script that notes its arguments and then does what the test wrote down
/// for these arguments, or nothing. While it lives, the bridge looks for it in `folder` and nowhere else.
class YabaiClient {
 public:
  explicit YabaiClient(std::filesystem::path folder);
  /// Fails the test when a child was left behind.
  ~YabaiClient();
  YabaiClient(const YabaiClient&) = delete;
  YabaiClient& operator=(const YabaiClient&) = delete;

  using Arguments = std::vector<std::string>;
  static inline const Arguments query{"-m", "query", "--spaces"};
  static inline const Arguments probe{"-m", "query", "--windows"};

  // Where the bridge looks, in this order.
  [[nodiscard]] std::string first() const { return folder_ / "first"; }
  [[nodiscard]] std::string second() const { return folder_ / "second"; }

  /// What the script says, to be added to.
  [[nodiscard]] std::string script() const;
  /// Puts a file in one step, as an installer does.
  static void putFile(const std::string& path, std::string_view text, bool executable = true);
  void install() const { putFile(second(), script()); }
  /// From now on the client runs `commands` when it gets these arguments.
  void on(const std::string& arguments, std::string_view commands) const;
  void answerQuery(std::string_view json) const;
  /// The argument lists of the client's runs since the last call.
  std::vector<Arguments> takeCalls() const;

 private:
  std::filesystem::path folder_;
};

}  // namespace tessaspaces
