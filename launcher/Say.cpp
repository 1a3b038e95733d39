#include "launcher/Say.h"

#include "launcher/Texts.h"
#include "platform/Terminal.h"

namespace launcher {

void say(const std::string& sentence) {
    tarn::platform::writeTerminal(tarn::platform::TerminalStream::Error, visible(sentence) + "\n");
}

ExitStatus refuse(const std::string& sentence) {
    say("record-converter: " + sentence);
    return ExitStatus::Refused;
}

} // namespace launcher
