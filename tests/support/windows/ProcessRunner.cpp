#include "support/ProcessRunner.h"

#include "platform/Text.h"

#include <windows.h>

#include <array>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace tarn::testing {
namespace {

/// One argument as the C runtime of the started program takes command lines apart.
std::wstring quotedArgument(const std::wstring& argument) {
    std::wstring result = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"') {
            result.append(backslashes + 1, L'\\');
        }
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        result += character;
    }
    return result.append(backslashes, L'\\') + L'"';
}

std::wstring commandLine(const std::vector<std::string>& command) {
    std::wstring line;
    for (const std::string& argument : command) {
        line += (line.empty() ? L"" : L" ") + quotedArgument(platform::toWide(argument));
    }
    return line;
}

std::wstring environmentBlock(const Process::Start& start) {
    std::map<std::wstring, std::wstring> variables;
    wchar_t* const own = GetEnvironmentStringsW();
    for (const wchar_t* entry = own; *entry != L'\0'; entry += std::wcslen(entry) + 1) {
        const std::wstring text = entry;
        const std::size_t equals = text.find(L'=', 1);
        variables[text.substr(0, equals)] = text.substr(equals + 1);
    }
    FreeEnvironmentStringsW(own);
    for (const auto& [name, value] : start.environment) {
        if (value.empty()) {
            variables.erase(platform::toWide(name));
        } else {
            variables[platform::toWide(name)] = platform::toWide(value);
        }
    }
    std::wstring block;
    for (const auto& [name, value] : variables) {
        block += name + L"=" + value + L'\0';
    }
    return block + L'\0';
}

} // namespace

struct Process::Implementation {
    /// Reads a pipe on a thread of its own: Windows has no wait on several.
    class Reader {
    public:
        Reader() {
            SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
            if (CreatePipe(&mRead, &mWrite, &inheritable, 0) == FALSE) {
                throw std::runtime_error("no pipe");
            }
            SetHandleInformation(mRead, HANDLE_FLAG_INHERIT, 0);
        }
        ~Reader() {
            closeWriteEnd();
            finish();
            CloseHandle(mRead);
        }
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

        HANDLE writeEnd() const { return mWrite; }
        void closeWriteEnd() {
            if (mWrite != nullptr) {
                CloseHandle(mWrite);
                mWrite = nullptr;
            }
        }
        void start() {
            closeWriteEnd();
            mThread = std::thread([this] {
                std::array<char, 4096> buffer{};
                DWORD size = 0;
                while (ReadFile(mRead, buffer.data(), static_cast<DWORD>(buffer.size()), &size,
                                nullptr) != FALSE &&
                       size > 0) {
                    const std::lock_guard lock(mMutex);
                    mText.append(buffer.data(), size);
                }
            });
        }
        void finish() {
            if (mThread.joinable()) {
                mThread.join();
            }
        }
        std::string text() const {
            const std::lock_guard lock(mMutex);
            return mText;
        }

    private:
        HANDLE mRead = nullptr;
        HANDLE mWrite = nullptr;
        std::thread mThread;
        mutable std::mutex mMutex;
        std::string mText;
    };

    PROCESS_INFORMATION process{};
    Reader output;
    Reader errors;
    std::optional<int> status;

    explicit Implementation(const Start& start) {
        std::wstring line = commandLine(start.command);
        std::wstring environment = environmentBlock(start);
        const std::wstring folder = platform::toWide(start.folder);
        STARTUPINFOW info{};
        info.cb = sizeof(info);
        info.dwFlags = STARTF_USESTDHANDLES;
        info.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        info.hStdOutput = output.writeEnd();
        info.hStdError = errors.writeEnd();
        // A group of its own, so that the console event reaches the program and not the test.
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                           CREATE_UNICODE_ENVIRONMENT | CREATE_NEW_PROCESS_GROUP,
                           environment.data(), folder.empty() ? nullptr : folder.c_str(), &info,
                           &process) == FALSE) {
            throw std::runtime_error("can not start " + start.command.front());
        }
        output.start();
        errors.start();
    }
    ~Implementation() {
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
};

Process::Process(const Start& start) : mImplementation(std::make_unique<Implementation>(start)) {
}

Process::~Process() {
    kill();
}

std::optional<int> Process::wait(std::chrono::milliseconds patience) {
    if (!mImplementation->status &&
        WaitForSingleObject(mImplementation->process.hProcess,
                            static_cast<DWORD>(patience.count())) == WAIT_OBJECT_0) {
        DWORD code = 0;
        GetExitCodeProcess(mImplementation->process.hProcess, &code);
        mImplementation->status = static_cast<int>(code);
        mImplementation->output.finish();
        mImplementation->errors.finish();
    }
    return mImplementation->status;
}

bool Process::waitForOutput(const std::string& text, std::chrono::milliseconds patience) {
    const auto found = [&] {
        return output().find(text) != std::string::npos || errors().find(text) != std::string::npos;
    };
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!found() && std::chrono::steady_clock::now() < deadline &&
           !wait(std::chrono::milliseconds(20))) {
    }
    return found();
}

void Process::interrupt() {
    // Ctrl-C can not be sent to one group alone, Ctrl-Break can.
    GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, mImplementation->process.dwProcessId);
}

bool Process::canInterrupt() {
    return GetConsoleCP() != 0;
}

void Process::kill() {
    if (!mImplementation->status) {
        TerminateProcess(mImplementation->process.hProcess, 137);
        wait();
    }
}

std::string Process::output() const {
    return mImplementation->output.text();
}

std::string Process::errors() const {
    return mImplementation->errors.text();
}

} // namespace tarn::testing
