#include "settings/given_inputs.h"

namespace {

constinit thread_local GivenInputs* tGiven = nullptr;

} // namespace

GivenInputs::GivenInputs(uint32_t sessionKey, std::span<const std::wstring_view> names,
                         uint32_t down)
    : key(sessionKey)
    , actions(names)
    , bits(down)
    , outer(tGiven) {
    tGiven = this;
}

GivenInputs::~GivenInputs() {
    tGiven = outer;
}

GivenInputs* GivenInputs::Of(uint32_t sessionKey) {
    return tGiven != nullptr && tGiven->key == sessionKey ? tGiven : nullptr;
}

bool GivenInputs::IsDown(std::wstring_view name) {
    for (size_t tried = 0; tried < actions.size(); ++tried) {
        const size_t at = next < actions.size() ? next : 0;
        next = at + 1;
        if (actions[at] == name) {
            return (bits >> at & 1) != 0;
        }
    }
    return false;
}
