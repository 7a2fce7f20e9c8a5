#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "driver/orvofil.h"
#include "driver/orvofil_fix.h"
#include "options/orvoopt_glb.h"
#include "options/orvovar.h"
#include "support/store.h"

namespace orvo {

/// Evaluates options of the module `a`; what they print is kept.
class OptionTest : public StoreTest {
  protected:
    OptionTest() {
        a.moduleName = "My_Module";
        testing::internal::CaptureStderr();
    }
    ~OptionTest() override { testing::internal::GetCapturedStderr(); }

    /// What has been printed since the last call.
    std::string printed() {
        const std::string text = testing::internal::GetCapturedStderr();
        testing::internal::CaptureStderr();
        return text;
    }

    struct Option {
        std::string text; // with its lead-in character
        uint8_t kind = TED_OPTION;
    };
    /// Evaluates the options in front of the header of a module whose options are the defaults.
    /// True when none was rejected.
    bool evaluate(ModuleRec& module, const std::vector<Option>& options, uint32_t line = 1) {
        changeCMP(&module);
        module.errors.clear();
        initMetaRec(module.options);
        for (const Option& option : options)
            addTedRec(module.options.range, option.kind, option.text);
        rejectedKinds = 0;
        checkGlobalOptions(&module, rejectedKinds, module.options.range, line);
        return module.errors.empty();
    }

    uint32_t rejectedKinds = 0;
};

} // namespace orvo
