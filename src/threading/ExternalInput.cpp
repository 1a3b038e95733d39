#include "threading/ExternalInput.h"

#include <utility>

namespace tarn {
namespace {

thread_local hint_external_input* current = nullptr;

} // namespace

void hint_external_input::set(std::string first, std::string second) {
    if (first.empty() && second.empty()) {
        clear();
    } else if (current != nullptr) {
        *current = {std::move(first), std::move(second)};
    } else {
        current = new hint_external_input{std::move(first), std::move(second)};
    }
}

void hint_external_input::clear() noexcept {
    delete std::exchange(current, nullptr);
}

std::shared_ptr<const hint_external_input> hint_external_input::share() {
    if (current == nullptr || current->first.empty()) {
        return nullptr;
    }
    return std::make_shared<const hint_external_input>(*current);
}

} // namespace tarn
