// Polls the variables of a file and shows them.
#pragma once

#include "host/commands/command.h"
#include "host/commands/console.h"
#include "host/commands/talk_options.h"
#include "host/core/links/link.h"
#include "host/core/session/poll_session.h"
#include "host/views/poll_view.h"

#include <memory>
#include <string>
#include <vector>

namespace velko
{

class PollCommand : public Command
{
public:
    explicit PollCommand(CLI::App &program);

    int run() override;

private:
    std::vector<Link> readFile() const;
    std::unique_ptr<PollView> makeView() const;
    void loop(PollSession &session, PollView &view);
    void end(PollSession &session) const;
    bool handle(const Console::Input &input, PollSession &session, PollView &view);
    static void stopProcess(PollSession &session, PollView &view);
    bool isOver(const PollSession &session) const;
    void reload(PollSession &session, PollView &view) const;
    void write(const std::string &assignment, PollSession &session, PollView &view);
    void passEvents(PollSession &session, PollView &view);
    void noteStatus(int status);

    TalkOptions m_talk;
    std::string m_file;
    std::string m_device;
    std::vector<std::string> m_assignments;
    std::string m_seconds;
    int m_cycles = 0;
    std::string m_heartbeat = "10";
    bool m_isJson = false;
    bool m_isLines = false;
    bool m_isFailFast = false;
    bool m_isInterrupted = false; // by the user, not by --cycles or --seconds

    int m_status = 0; // worst ExitStatus of the writes so far
};

} // namespace velko
