#include "platform/Signature.h"

#include "platform/CertificateEntry.h"
#include "platform/windows/Handle.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <cstddef>
#include <imagehlp.h>
#include <limits>
#include <memory>
#include <softpub.h>
#include <vector>
#include <wincrypt.h>
#include <wintrust.h>

namespace tarn::platform {
namespace {

static_assert(offsetof(WIN_CERTIFICATE, bCertificate) == kCertificateHeaderSize);
/// Room after the certificate for a reader that counts the whole header structure in.
constexpr std::size_t kSpare = sizeof(WIN_CERTIFICATE);

struct FreeCertificate {
    void operator()(const CERT_CONTEXT* certificate) const {
        CertFreeCertificateContext(certificate);
    }
};
using Certificate = std::unique_ptr<const CERT_CONTEXT, FreeCertificate>;

bool hasExactlyOneEntry(HANDLE file) {
    DWORD count = 0; // left untouched for what is not a PE file
    return ImageEnumerateCertificates(file, CERT_SECTION_TYPE_ANY, &count, nullptr, 0) != 0 &&
           count == 1;
}

/// Header and contents of the first entry; empty when they cannot be read.
std::vector<std::byte> firstEntry(HANDLE file) {
    LARGE_INTEGER fileSize{};
    WIN_CERTIFICATE header{};
    if (GetFileSizeEx(file, &fileSize) == 0 || ImageGetCertificateHeader(file, 0, &header) == 0 ||
        header.dwLength < kCertificateHeaderSize || header.dwLength > fileSize.QuadPart ||
        header.dwLength > std::numeric_limits<DWORD>::max() - kSpare) {
        return {};
    }
    std::vector<std::byte> entry(header.dwLength + kSpare);
    auto* certificate = reinterpret_cast<WIN_CERTIFICATE*>(entry.data());
    certificate->dwLength = header.dwLength;
    certificate->wRevision = WIN_CERT_REVISION_1_0;
    auto size = static_cast<DWORD>(entry.size());
    if (ImageGetCertificateData(file, 0, certificate, &size) == 0) {
        return {};
    }
    return entry;
}

Certificate verifiedSigner(std::span<const std::byte> message) {
    CRYPT_VERIFY_MESSAGE_PARA parameters{};
    parameters.cbSize = 32; // without the members that later headers add for strong signatures
    parameters.dwMsgAndCertEncodingType = PKCS_7_ASN_ENCODING | X509_ASN_ENCODING;
    const CERT_CONTEXT* signer = nullptr;
    const BOOL verified =
        CryptVerifyMessageSignature(&parameters, 0, reinterpret_cast<const BYTE*>(message.data()),
                                    static_cast<DWORD>(message.size()), nullptr, nullptr, &signer);
    Certificate certificate(signer);
    return verified != 0 ? std::move(certificate) : nullptr;
}

/// Asks the system whether the signature belongs to these bytes. Whom to trust is decided by the
/// signer's name, so a chain that ends nowhere known says nothing here.
bool isSignatureOfFile(const std::wstring& path, HANDLE file) {
    WINTRUST_FILE_INFO subject{};
    subject.cbStruct = sizeof(subject);
    subject.pcwszFilePath = path.c_str();
    subject.hFile = file;
    WINTRUST_DATA data{};
    data.cbStruct = sizeof(data);
    data.dwUIChoice = WTD_UI_NONE;
    data.fdwRevocationChecks = WTD_REVOKE_NONE;
    data.dwUnionChoice = WTD_CHOICE_FILE;
    data.pFile = &subject;
    data.dwStateAction = WTD_STATEACTION_VERIFY;
    data.dwProvFlags = WTD_CACHE_ONLY_URL_RETRIEVAL;
    GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
    const auto nobody = static_cast<HWND>(INVALID_HANDLE_VALUE);
    const LONG result = WinVerifyTrust(nobody, &action, &data);
    data.dwStateAction = WTD_STATEACTION_CLOSE;
    WinVerifyTrust(nobody, &action, &data);
    return result == ERROR_SUCCESS || result == CERT_E_UNTRUSTEDROOT || result == CERT_E_CHAINING ||
           result == CERT_E_UNTRUSTEDTESTROOT || result == CERT_E_EXPIRED;
}

Certificate signerOf(const std::wstring& path) {
    const Handle file(CreateFileW(systemPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS,
                                  nullptr));
    if (!file || !hasExactlyOneEntry(file.get()) || !isSignatureOfFile(path, file.get())) {
        return nullptr;
    }
    const std::vector<std::byte> entry = firstEntry(file.get());
    const auto message = certificateMessage(entry);
    return message ? verifiedSigner(*message) : nullptr;
}

} // namespace

std::optional<std::wstring> embeddedSignerName(const std::wstring& path) {
    const Certificate signer = signerOf(path);
    if (signer == nullptr) {
        return std::nullopt;
    }
    const auto nameString = [&](wchar_t* buffer, DWORD size) {
        return CertGetNameStringW(signer.get(), CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr, buffer,
                                  size);
    };
    std::wstring name(nameString(nullptr, 0), L'\0'); // with its NUL
    const DWORD length = nameString(name.data(), static_cast<DWORD>(name.size()));
    name.resize(length > 0 ? length - 1 : 0);
    return name;
}

bool canReadFileProperties(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA properties{};
    return GetFileAttributesExW(systemPath(path).c_str(), GetFileExInfoStandard, &properties) != 0;
}

} // namespace tarn::platform
