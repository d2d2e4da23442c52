#pragma once

namespace vx::test {

/** Whether @p call throws an @p Exception; what else it throws goes on. */
template <typename Exception, typename Call>
bool throws(const Call& call)
{
    try {
        call();
    } catch (const Exception&) {
        return true;
    }
    return false;
}

} // namespace vx::test

/** As QVERIFY_EXCEPTION_THROWN, which Qt 6 has replaced by another that Qt 5 does not have. */
#define VX_VERIFY_THROWS(expression, Exception)                                                    \
    QVERIFY(vx::test::throws<Exception>([&] { static_cast<void>(expression); }))
