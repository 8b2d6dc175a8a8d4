#include "host/views/terminal.h"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <string_view>

namespace velko
{

namespace
{

const size_t FEWEST_ROWS = 4;
const size_t FEWEST_COLUMNS = 10;

// ANSI control sequences.
constexpr std::string_view OTHER_SCREEN = "\x1b[?1049h\x1b[2J";
constexpr std::string_view MAIN_SCREEN = "\x1b[?25h\x1b[?1049l";

// A handler for signals has no other way to what it restores.
volatile std::sig_atomic_t isOnOtherScreen = 0;
volatile std::sig_atomic_t isModeChanged = 0;
termios modeBefore = {};

constexpr std::array<int, 8> ENDINGS = {SIGINT,  SIGTERM, SIGQUIT, SIGABRT,
                                        SIGSEGV, SIGBUS,  SIGFPE,  SIGILL};
std::array<struct sigaction, ENDINGS.size()> actionsBefore = {};

// A terminal that does not control the program has no foreground.
bool isInForeground()
{
    const pid_t group = ::tcgetpgrp(STDOUT_FILENO);
    return group < 0 || group == ::getpgrp();
}

// In the background, the terminal has been restored by the shell already.
void restore()
{
    const bool isOwn = isInForeground();
    if (isModeChanged != 0 && isOwn)
        ::tcsetattr(STDIN_FILENO, TCSANOW, &modeBefore);
    isModeChanged = 0;
    if (isOnOtherScreen != 0 && isOwn
        && ::write(STDOUT_FILENO, MAIN_SCREEN.data(), MAIN_SCREEN.size()) < 0)
        return; // there is no terminal any more
    isOnOtherScreen = 0;
}

bool isFault(const siginfo_t &signal)
{
    const int number = signal.si_signo;
    return signal.si_code > 0
           && (number == SIGSEGV || number == SIGBUS || number == SIGFPE || number == SIGILL);
}

// Afterwards the signal has its earlier effect. A fault occurs again; other signals are raised.
void restoreAndEnd(int number, siginfo_t *signal, void * /*context*/)
{
    restore();
    for (size_t i = 0; i < ENDINGS.size(); ++i)
        if (ENDINGS[i] == number)
            ::sigaction(number, &actionsBefore[i], nullptr);
    if (!isFault(*signal))
        ::raise(number);
}

void restoreAtEndings()
{
    struct sigaction action = {};
    action.sa_sigaction = restoreAndEnd;
    action.sa_flags = SA_SIGINFO;
    for (size_t i = 0; i < ENDINGS.size(); ++i)
        ::sigaction(ENDINGS[i], &action, &actionsBefore[i]);
}

void takeKeysOneByOne()
{
    termios mode = modeBefore;
    mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | IEXTEN);
    mode.c_cc[VMIN] = 1;
    mode.c_cc[VTIME] = 0;
    ::tcsetattr(STDIN_FILENO, TCSADRAIN, &mode);
}

} // namespace

Terminal::Terminal() : m_hasKeys(::isatty(STDIN_FILENO) != 0)
{
    restoreAtEndings();
}

Terminal::~Terminal()
{
    leave();
    for (size_t i = 0; i < ENDINGS.size(); ++i)
        ::sigaction(ENDINGS[i], &actionsBefore[i], nullptr);
}

bool Terminal::isForeground() const
{
    return isInForeground();
}

// May be called again: another program may have changed the mode while this one was stopped.
void Terminal::enter()
{
    if (m_hasKeys && (isModeChanged != 0 || ::tcgetattr(STDIN_FILENO, &modeBefore) == 0)) {
        isModeChanged = 1;
        takeKeysOneByOne();
    }
    isOnOtherScreen = 1;
    std::fwrite(OTHER_SCREEN.data(), 1, OTHER_SCREEN.size(), stdout);
}

void Terminal::leave()
{
    if (!isEntered())
        return;
    std::fflush(stdout);
    if (m_hasKeys)
        ::tcflush(STDIN_FILENO, TCIFLUSH);
    restore();
}

bool Terminal::isEntered() const
{
    return isOnOtherScreen != 0;
}

Terminal::Size Terminal::size()
{
    winsize size = {};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0)
        return {};
    return {std::max<size_t>(size.ws_row, FEWEST_ROWS),
            std::max<size_t>(size.ws_col, FEWEST_COLUMNS)};
}

} // namespace velko
