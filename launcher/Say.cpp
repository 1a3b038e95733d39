#include "launcher/Say.h"

#include "platform/Terminal.h"

namespace launcher {

void say(const std::string& sentence) {
    tarn::platform::writeTerminal(tarn::platform::TerminalStream::Error, sentence + "\n");
}

ExitStatus refuse(const std::string& sentence) {
    say("record-converter: " + sentence);
    return NotStarted;
}

} // namespace launcher
