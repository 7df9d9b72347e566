// Binds every string function to its instance for one instruction set, ZEL_FORCED_ISA, in place of
// the library's own choice. Linked in front of the library, these definitions take precedence, and
// any test of the public functions becomes a test of that instance.
#include <gtest/gtest.h>

#include "string/kernels/instances.h"

namespace forced = zel::ZEL_FORCED_ISA;

// Resolvers that ran, before main.
static int g_bound;

#define ZEL_BIND(symbol, name)                                                              \
    extern "C" __attribute__((no_sanitize("address", "undefined"))) decltype(&forced::name) \
    symbol() {                                                                              \
        ++g_bound;                                                                          \
        return forced::name;                                                                \
    }

#define ZEL_BIND_EXPORT(name)   \
    ZEL_BIND(bind_##name, name) \
    extern "C" decltype(forced::name) name __attribute__((ifunc("bind_" #name)));

#define ZEL_BIND_KERNEL(name)                                                 \
    ZEL_BIND(bind_kernel_##name, name)                                        \
    namespace zel::kernels {                                                  \
    decltype(forced::name) name __attribute__((ifunc("bind_kernel_" #name))); \
    }

ZEL_STRING_EXPORTS(ZEL_BIND_EXPORT)
ZEL_KERNELS(ZEL_BIND_KERNEL)

namespace {

class Processor : public testing::Environment {
public:
    void SetUp() override {
        if (!zel::isSupported(zel::ZEL_FORCED_ISA_ENUM)) {
            GTEST_SKIP() << "this processor cannot run the instance";
        }
    }
};

const testing::Environment* const kProcessor = testing::AddGlobalTestEnvironment(new Processor);

TEST(ForcedInstance, TheseDefinitionsTakePrecedenceOverTheDispatcher) {
    EXPECT_GT(g_bound, 0);
}

}  // namespace
