#include "common/qk/activation_context.h"

#include "common/qk/module.h"

namespace qk {

namespace {

constexpr WORD kManifestId = 2;

ActivationContext own_context(HINSTANCE instance) {
    ACTCTXW request = {sizeof request};
    request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    request.hModule = instance;
    request.lpResourceName = MAKEINTRESOURCEW(kManifestId);
    return ActivationContext(CreateActCtxW(&request));
}

}  // namespace

CommonControls::CommonControls()
    : context_(own_context(module_instance())),
      active_(context_ && ActivateActCtx(context_.get(), &cookie_)) {}

CommonControls::~CommonControls() {
    if (active_)
        DeactivateActCtx(0, cookie_);
}

}  // namespace qk
