// An engine by another compiler, for another ABI: clang and lld make it for Microsoft's, without a
// C runtime. It knows nothing of this project's headers, only the words of docs/engine-contract.md,
// which it writes as that compiler's user would, with virtual destructors. The one library serves
// under both names.
//
// A conversion puts its sources behind each other; an empty one is its error 7.

using Bool = int;
using Dword = unsigned long;
using Handle = void*;
using Size = unsigned long long;

extern "C" {
int _fltused = 0; // which says that floating point is used
#define SYSTEM __declspec(dllimport)
SYSTEM Handle CreateFileW(const wchar_t*, Dword, Dword, void*, Dword, Dword, Handle);
SYSTEM Handle CreateThread(void*, Size, Dword (*)(void*), void*, Dword, Dword*);
SYSTEM Bool CloseHandle(Handle);
SYSTEM Handle GetStdHandle(Dword);
SYSTEM int MultiByteToWideChar(unsigned, Dword, const char*, int, wchar_t*, int);
SYSTEM Bool ReadFile(Handle, void*, Dword, Dword*, void*);
SYSTEM Dword WaitForSingleObject(Handle, Dword);
SYSTEM Bool WriteFile(Handle, const void*, Dword, Dword*, void*);
}

// Nothing here is on the heap.
void* operator new(Size, void* place) {
    return place;
}
void operator delete(void*) {
}

namespace {

class Sink {
public:
    virtual ~Sink() = default;
    virtual void OnProgress(float percent) = 0;
    virtual void OnError(int code) = 0;
};

class TraceSink {
public:
    virtual int OnTrace(unsigned level, const char* text) = 0;
    virtual ~TraceSink() = default;
};

Handle openUtf8(const char* path, bool isNew) {
    wchar_t wide[1024];
    MultiByteToWideChar(65001, 0, path, -1, wide, 1024);
    return CreateFileW(wide, isNew ? 0x40000000 : 0x80000000, 1, nullptr, isNew ? 2 : 3, 0,
                       nullptr);
}

void say(const char* text) {
    Dword length = 0;
    while (text[length] != '\0') {
        ++length;
    }
    WriteFile(GetStdHandle(static_cast<Dword>(-11)), text, length, &length, nullptr);
}

class Converter {
public:
    virtual ~Converter() = default;
    virtual int version() { return 1; }
    virtual void unused2() {}
    virtual void unused3() {}
    virtual void unused4() {}
    virtual void unused5() {}
    virtual int StartSingle(const char* source, const char* destination, unsigned p1, unsigned p2) {
        say("single\n");
        return StartMultiple(&source, 1, destination, p1, p2);
    }
    virtual int StartMultiple(const char* const* sources, Size count, const char* destination,
                              unsigned p1, unsigned p2) {
        if (count == 0 || count > kMost || p1 != 3 || p2 != 4) {
            return -100;
        }
        for (mCount = 0; mCount < count; ++mCount) {
            mSources[mCount] = openUtf8(sources[mCount], false);
        }
        mDestination = openUtf8(destination, true);
        mThread = CreateThread(
            nullptr, 0,
            [](void* self) -> Dword {
                static_cast<Converter*>(self)->convert();
                return 0;
            },
            this, 0, nullptr);
        return 0xFFF; // a success, as its bits 12 to 15 say
    }

    Sink* mSink = nullptr;
    Handle mThread = nullptr;

private:
    static constexpr Size kMost = 4;

    void convert() {
        bool isWhole = true;
        for (Size part = 0; part < mCount; ++part) {
            char bytes[64];
            Dword length = 0;
            ReadFile(mSources[part], bytes, sizeof bytes, &length, nullptr);
            CloseHandle(mSources[part]);
            isWhole = isWhole && length > 0;
            WriteFile(mDestination, bytes, length, &length, nullptr);
            mSink->OnProgress(12.5F * static_cast<float>(part + 1));
        }
        CloseHandle(mDestination);
        delete mSink; // in the program's compiler's words: a call of slot 0, with flags
        if (isWhole) {
            mSink->OnProgress(100);
        } else {
            mSink->OnError(7);
        }
    }

    Handle mSources[kMost] = {};
    Size mCount = 0;
    Handle mDestination = nullptr;
};

alignas(Converter) char storage[sizeof(Converter)];
Converter* converter = nullptr;
TraceSink* traceSink = nullptr;

} // namespace

#define EXPORT extern "C" __declspec(dllexport)

EXPORT int CreateMediaConverter(Converter** instance, Sink* sink) {
    *instance = converter = new (storage) Converter;
    converter->mSink = sink;
    return 0;
}

EXPORT int ZelStopConversions(unsigned milliseconds) {
    const bool isRunning = converter != nullptr && converter->mThread != nullptr;
    return isRunning && WaitForSingleObject(converter->mThread, milliseconds) != 0 ? 1 : 0;
}

EXPORT void ZelSetTraceSink(TraceSink* sink) {
    traceSink = sink;
}

EXPORT void ZelSetTraceMaxLevel(int maxLevel) {
    delete traceSink;
    for (unsigned level = 0; static_cast<int>(level) < maxLevel; ++level) {
        const char text[] = {'a', 't', ' ', static_cast<char>('0' + level), '\0'};
        traceSink->OnTrace(level, text);
    }
}

/// The library's entry point: reason 0 is the end, with what else is null when it is unloaded.
extern "C" Bool atEntry(Handle, Dword reason, void* atExit) {
    if (reason == 0 && atExit == nullptr) {
        say(traceSink != nullptr   ? "unloaded with its sink\n"
            : converter != nullptr ? "mediaconverter unloaded\n"
                                   : "zelclient unloaded\n");
    }
    return 1;
}
