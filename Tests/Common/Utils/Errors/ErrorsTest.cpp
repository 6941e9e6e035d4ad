#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Errors/Assert.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"
#include "Common/Utils/Errors/SupportCode.h"
#include "Common/Utils/Errors/ThreadInterrupted.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/Report.h"
#include "Tests/Fakes/TemporaryDirectory.h"

#include <boost/assert.hpp>
#include <boost/exception/diagnostic_information.hpp>
#include <boost/exception/errinfo_nested_exception.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <locale>
#include <regex>
#include <stdexcept>
#include <typeinfo>

namespace Nerix::Tests {
namespace {

using namespace Common::Utils;

void throughFrame(const char* name, const std::function<void()>& inner) {
    try {
        inner();
    } catch (...) { NERIX_RETHROW_WITH_CONTEXT("frame ", name); }
}

TEST(Rethrow, ContextLinesAreOutermostFirst) {
    const auto fail = [] { BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("cause ", 7)); };
    const std::string report = diagnosticsOf([&] { throughFrame("B", [&] { throughFrame("A", fail); }); });
    const std::string line = R"( -> void Nerix::Tests::.*\(.*ErrorsTest\.cpp:\d+\) frame )";
    const std::regex lines(R"(\n\[Nerix::Common::Utils::tag_errinfo_rethrows\*\] = )" + line + "B\n" + line + "A\n");
    EXPECT_TRUE(std::regex_search(report, lines)) << report;
    EXPECT_PRED2(contains, report, "] = cause 7\n");
}

TEST(Rethrow, ExceptionsWithoutErrorInfoAreWrappedOrLogged) {
    const auto interrupt = [] { throw boost::thread_interrupted(); };
    const std::string report = diagnosticsOf([&] { throughFrame("outer", [&] { throughFrame("inner", interrupt); }); });
    EXPECT_PRED2(contains, report, "Nerix::Common::Utils::thread_interrupted");
    EXPECT_PRED2(contains, report, "frame outer\n -> ");
    EXPECT_THROW(throughFrame("X", interrupt), boost::thread_interrupted)
        << "handlers of boost::thread_interrupted still catch it";
    using Manipulator = std::ostream& (*)(std::ostream&);
    const auto rethrow = [](const boost::exception_ptr& exception, Manipulator manipulator) {
        RethrowExceptionStream stream(exception);
        stream.getStream() << manipulator;
    };
    EXPECT_THROW(rethrow(boost::copy_exception(boost::thread_interrupted()), std::flush), Common::Utils::thread_interrupted);
    const auto writeFails = [](std::ostream&) -> std::ostream& { throw std::runtime_error("writing"); };
    EXPECT_THROW(rethrow(boost::copy_exception(GenericException()), writeFails), std::runtime_error);
    EXPECT_DEATH(rethrow({}, std::flush), "ASSERTION FAILED: excPtr, ");

    FakePlatform::instance().reset();
    EXPECT_THROW(throughFrame("X", [] { throw std::runtime_error("plain"); }), std::runtime_error);
    const std::string record = FakePlatform::instance().log().at(0).text;
    EXPECT_PRED2(contains, record, ">Rethrowing unknown exception:  -> void");
    EXPECT_PRED2(contains, record, ") frame X");
}

TEST(SupportCode, ChainsAreOutermostFirst) {
    GenericException inner;
    EXPECT_EQ(get_combined_supportcode(inner), "");
    add_supportcode_context(inner, "3");
    add_supportcode_context(inner, "2");
    EXPECT_EQ(get_combined_supportcode(inner), "2-3");
    GenericException outer;
    outer << boost::errinfo_nested_exception(boost::copy_exception(inner));
    EXPECT_EQ(get_combined_supportcode(outer), "2-3");
    add_supportcode_context(outer, "1");
    EXPECT_EQ(get_combined_supportcode(outer), "1-2-3");
    GenericException other;
    add_supportcode_context(other, outer, "0");
    EXPECT_EQ(get_combined_supportcode(other), "0-1");
    outer << boost::errinfo_nested_exception(boost::copy_exception(std::runtime_error("without entries")));
    EXPECT_EQ(get_combined_supportcode(outer), "1");
}

TEST(ErrorInfo, SubjectIsTheDebugNameOrTypeAndAddress) {
    struct Plain {
    } plain;
    struct Named : GenericException, IDebugName {
        std::string debugName() const override { return "named"; }
    } named;
    EXPECT_EQ(errinfo_subject(named).value(), "named");
    EXPECT_EQ(errinfo_subject(static_cast<GenericException&>(named)).value(), "named");
    std::ostringstream name;
    name << typeid(plain).name() << '=' << &plain;
    EXPECT_EQ(errinfo_subject(plain).value(), name.str());
}

struct Grouped : std::numpunct<char> {
    std::string do_grouping() const override { return "\1"; }
};

TEST(ErrorInfo, IgnoresGlobalLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouped)); // owns it
    EXPECT_EQ(errinfo_stream(1234).value(), "1234");
    std::locale::global(before);
}

TEST(ErrorInfo, StreamEntryQuotesPathsAndIsReplacedByErrno) {
    EXPECT_EQ(errinfo_stream(boost::filesystem::path("/a \"b\"&")).value(), "\"/a &\"b&\"&&\"");
    GenericException exception;
    exception << errinfo_stream("first ") << errinfo_errno(2);
    EXPECT_PRED2(contains, boost::diagnostic_information(exception), "] =  errno=2 (No such file or directory)\n");
}

const std::string header = "org.corvan.tv.nerix.NERIX: Direct \\[FTL\\]\\[[0-9]+ .*\\] ASSERTION FAILED: ";

TEST(AssertDeathTest, WithoutConsoleTheReportGoesToStandardErrorAndTheLog) {
    const int one = 1;
    EXPECT_DEATH(NerixAssert(one == 2), "Cannot open /dev/console\n" + header +
                                            "one == 2, .*TestBody\\(\\), ErrorsTest.cpp:[0-9]+\n"
                                            "dlog fatal: .*\\[FTL\\] Assert.cpp:[0-9]+>ASSERTION FAILED: one == 2");
    EXPECT_DEATH(NerixAssertMsg(false, "why"), header + "false, .*\nMESSAGE: why\n");
}

TEST(AssertDeathTest, WritesReportToConsoleBeforeAborting) {
    const TemporaryDirectory directory;
    const boost::filesystem::path console = directory.path() / "console";
    ::setenv("NERIX_TEST_CONSOLE", console.c_str(), 1);
    EXPECT_DEATH(NerixAssertMsg(false, "why"), "^dlog fatal: ");
    ::unsetenv("NERIX_TEST_CONSOLE");
    EXPECT_PRED2(matches, contentOf(console), header + "false, .*\nMESSAGE: why\n");
}

TEST(AssertDeathTest, BoostAssertUsesOurReport) {
    EXPECT_DEATH(BOOST_ASSERT(header.empty()), header + "header.empty\\(\\), .*ErrorsTest.cpp:[0-9]+\n");
    EXPECT_DEATH(BOOST_ASSERT_MSG(false, "why"), header + "false, .*\nMESSAGE: why\n");
}

} // namespace
} // namespace Nerix::Tests
