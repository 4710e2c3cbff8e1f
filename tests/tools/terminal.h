#ifndef SURVEYDATA_TESTS_TOOLS_TERMINAL_H_
#define SURVEYDATA_TESTS_TOOLS_TERMINAL_H_

#include <cstddef>
#include <string>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

/// A pseudo terminal for a program to write to. It leaves the output as it is.
class TerminalC {
 public:
  TerminalC() : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) return;
    name_ = ptsname(master_);
    keptOpen_ = open(name_.c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    if (tcgetattr(keptOpen_, &settings) != 0) return;
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    isThere_ = tcsetattr(keptOpen_, TCSANOW, &settings) == 0;
    fcntl(master_, F_SETFL, O_NONBLOCK);
  }
  TerminalC(const TerminalC&) = delete;
  TerminalC& operator=(const TerminalC&) = delete;
  ~TerminalC() {
    if (keptOpen_ >= 0) close(keptOpen_);
    if (master_ >= 0) close(master_);
  }

  /// False if this system has no pseudo terminals.
  bool IsThere() const { return isThere_; }
  const std::string& Name() const { return name_; }
  /// What was written to it since the last call. It holds about 4 KB.
  std::string Read() const {
    std::string text;
    char bytes[4096];
    for (ssize_t size = 0; (size = read(master_, bytes, sizeof(bytes))) > 0;) {
      text.append(bytes, static_cast<std::size_t>(size));
    }
    return text;
  }

 private:
  int master_;
  int keptOpen_ = -1;
  std::string name_;
  bool isThere_ = false;
};

#endif  // SURVEYDATA_TESTS_TOOLS_TERMINAL_H_
