// SPDX-License-Identifier: MIT
// Loads the module with the host's loader, calls its function twice and unloads it.
//
//     loadstranger FOLDER_OF_THE_MODULE FOLDER_OF_THE_LIBRARY
#include "host/documentmanager.h"
#include "host/functions.h"
#include "host/moduleloader.h"
#include "host/session.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

hst_resbufW* text(const char* ascii, hst_resbufW* next) {
    const lm::WideString units = lm::system::widen(ascii);
    hst_resbufW* const record = lm::host::newRecord(RTSTR);
    const std::size_t bytes = (units.size() + 1) * sizeof(unsigned short);
    record->value.text = static_cast<unsigned short*>(std::memcpy(std::malloc(bytes), units.c_str(), bytes));
    record->rbnext = next;
    return record;
}

short firstTypeOf(CHostAPI& api, hst_resbufW* call) {
    hst_resbufW* result = nullptr;
    api.invoke(call, result);
    const short type = result == nullptr ? short(0) : result->restype;
    api.relRb(result);
    api.relRb(call);
    return type;
}

} // namespace

int main(int, char** arguments) {
    lm::host::setConsoleSink(
        [](lm::WideView units) { std::fputs(lm::system::toUtf8(units).c_str(), stdout); });
    lm::host::ModuleLoader loader({arguments[1], arguments[2]});
    for (const char* const name : {"LMCommon_26.8_17.tx", "LMCommonMFC_26.8_17.tx", "Stranger.tx"}) {
        if (const lm::host::ModuleResult result = loader.load(name); !result) {
            std::puts(result.reason.c_str());
            return 1;
        }
    }
    std::puts("loaded");
    CHostAPI& api = *lm::host::documentManager().newDocument()->getAPI();
    if (firstTypeOf(api, text("rzStrangerJoin", text("first", text("second", nullptr)))) != RTSTR) return 1;
    if (firstTypeOf(api, text("rzStrangerJoin", text("alone", nullptr))) == RTNIL) std::puts("pair refused");
    lm::host::documentManager().closeAll();
    if (loader.unloadAll().empty()) std::puts("unloaded");
    if (!lm::host::hasFunction("rzStrangerJoin")) std::puts("gone");
    return 0;
}
