#include "Common/Utils/Singletons/SRegisterItem.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/thread/thread.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace Nerix::Tests {
namespace {

using namespace Common::Utils;

std::vector<std::string> lifeEvents;

struct Service : RegisterableSingleton {
    Service() { lifeEvents.emplace_back("service made"); }
    ~Service() override {
        lifeEvents.emplace_back("service gone");
        boost::this_thread::interruption_point(); // must not throw: an exception from a destructor ends the process
    }
    int answer() const { return 42; }
};

struct Dependent : RegisterableSingleton {
    static std::list<SingletonsID> requirements() { return {DUMMY_SINGLETON}; }
    ~Dependent() override { lifeEvents.emplace_back("dependent gone"); }
};

struct Topmost : RegisterableSingleton {
    static std::list<SingletonsID> requirements() { return {DEPENDENT_DUMMY_SINGLETON}; }
    ~Topmost() override { lifeEvents.emplace_back("topmost gone"); }
};

using ServiceGuard = SingletonServiceGuard<Service>;
using DependentGuard = SingletonServiceGuard<Dependent>;

SingletonsRegister& theRegister() { return SingletonsRegister::getSingletonsRegister(); }

TEST(SingletonsID, EachHasItsNumberAndItsName) {
    std::string names;
    for (int id = 0; id <= 22; ++id) { names += singletonsIdToString(static_cast<SingletonsID>(id)) + '\n'; }
    EXPECT_EQ(names, "USER_DATA_REGISTER\nTVS_SIGNAL_DISTRIBUTOR\nPOWER_OFF_CB_DISTRIBUTOR\nG_MAIN_LOOP\n"
                     "DEBUG_AND_TEST_PARMS\nINSTALLATION_PERFORMANCE_PARAMS\nSINGLETON_PANEL_SERVICE\n"
                     "SINGLETON_CAMERA_PLUGIN\nSINGLETON_SUBMICOM_PLUGIN\nSINGLETON_EXAMPLE_PLUGIN\n"
                     "SINGLETON_INDEPENDENT_FIRMWARE_PLUGIN\nSINGLETON_TVTIMER_INITIALIZER\nSINGLETON_CSP_INITIALIZER\n"
                     "SINGLETON_WAKEUP_ENABLER\nSINGLETON_USB_DEVICE_INITIALIZER\nSINGLETON_POWER_API_INITIALIZER\n"
                     "SINGLETON_USB_CB_DISTRIBUTOR\nSINGLETON_USB_NFS_MOUNT\nSINGLETON_UNIRO_MOUNTER\n"
                     "SINGLETON_OPENSSL_INITIALIZER\nDUMMY_SINGLETON\nDEPENDENT_DUMMY_SINGLETON\n"
                     "Error: singleton identifier not recognized (22)\n");
}

TEST(SingletonsRegister, GuardsShareOneInstance) {
    lifeEvents.clear();
    FakePlatform::instance().reset();
    {
        const ServiceGuard first(DUMMY_SINGLETON);
        const ServiceGuard second(DUMMY_SINGLETON);
        EXPECT_EQ(theRegister().getService<Service>("user", DUMMY_SINGLETON)->answer(), 42);
        EXPECT_EQ(lifeEvents, std::vector<std::string>{"service made"});
    }
    EXPECT_EQ(lifeEvents.back(), "service gone");
    for (const char* const record : {">Needed: singleton id: DUMMY_SING", ">Unmarking needed: singleton id: DUMMY_SING"}) {
        EXPECT_EQ(FakePlatform::instance().countLogged(record), 2U) << record;
    }
}

TEST(SingletonsRegister, ServiceIsDestroyedInAnInterruptedThread) {
    lifeEvents.clear();
    boost::thread interrupted([] {
        const ServiceGuard guard(DUMMY_SINGLETON);
        while (!boost::this_thread::interruption_requested()) {}
    });
    interrupted.interrupt();
    interrupted.join();
    EXPECT_EQ(lifeEvents, (std::vector<std::string>{"service made", "service gone"}));
}

TEST(SingletonsRegister, RequiredServiceOutlivesItsDependent) {
    lifeEvents.clear();
    auto service = std::make_unique<ServiceGuard>(DUMMY_SINGLETON);
    auto dependent = std::make_unique<DependentGuard>(DEPENDENT_DUMMY_SINGLETON);
    auto topmost = std::make_unique<SingletonServiceGuard<Topmost>>(G_MAIN_LOOP);
    service.reset();
    dependent.reset();
    EXPECT_EQ(lifeEvents.size(), 1U) << "all are needed by the topmost";
    topmost.reset();
    EXPECT_EQ(lifeEvents, (std::vector<std::string>{"service made", "topmost gone", "dependent gone", "service gone"}));
}

TEST(SingletonsRegister, FactoryRunsOnceAndItsFailurePropagates) {
    int made = 0;
    const auto factory = [&]() -> boost::shared_ptr<RegisterableSingleton> {
        if (++made == 1) { throw std::runtime_error("factory"); }
        return boost::make_shared<Service>();
    };
    EXPECT_THROW(theRegister().markNeeded<Service>(DUMMY_SINGLETON, factory), std::runtime_error);
    for (int time = 0; time < 2; ++time) { theRegister().markNeeded<Service>(DUMMY_SINGLETON, factory); }
    EXPECT_EQ(made, 2);
    theRegister().unmarkNeeded(DUMMY_SINGLETON);
    theRegister().getService<Service>("user", DUMMY_SINGLETON);
    lifeEvents.clear();
    theRegister().unmarkNeeded(DUMMY_SINGLETON);
    EXPECT_EQ(lifeEvents, std::vector<std::string>{"service gone"});
}

TEST(SingletonsRegisterDeathTest, MisuseAborts) {
    const ServiceGuard guard(DUMMY_SINGLETON);
    auto shortLived = std::make_unique<ServiceGuard>(G_MAIN_LOOP);
    const SingletonPointer<Service> dangling("a", nullptr);
    EXPECT_DEATH(theRegister().unmarkNeeded(DUMMY_SINGLETON);
                 DependentGuard{TVS_SIGNAL_DISTRIBUTOR},
                 "0, .*checkRequirements.*\nMESSAGE: Cannot meet requirements of given singleton. Cannot find "
                 "singletons required by given singleton.");
    const auto item =
        boost::make_shared<SRegisterItem>(boost::make_shared<Service>(), DUMMY_SINGLETON, std::list<SingletonsID>());
    item->incrementUsage("a");
    EXPECT_DEATH(item->decrementUsage("b"), "MESSAGE: User 'b' is not registered as user of this singleton "
                                            "\\(DUMMY_SINGLETON=DUMMY_SINGLETON\\)");
    item->decrementUsage("a");
    EXPECT_DEATH(theRegister().getService<Service>("u", POWER_OFF_CB_DISTRIBUTOR),
                 "MESSAGE: Singleton POWER_OFF_CB_DISTRIBUTOR does not exist.");
    EXPECT_DEATH(theRegister().getService<Dependent>("u", DUMMY_SINGLETON),
                 "MESSAGE: Singleton's type probably doesn't match with its id");
    EXPECT_DEATH(theRegister().unmarkNeeded(POWER_OFF_CB_DISTRIBUTOR), "ASSERTION FAILED: 0, .*internalUnmarkNeeded");
    const SingletonPointer<Dependent> mistaken("a", item);
    EXPECT_DEATH(mistaken.operator->(),
                 "MESSAGE: It should never happen! Is was checked in getService, but Singleton's type "
                 "probably doesn't match with it's id");
    EXPECT_DEATH(dangling->answer(), "MESSAGE: You are trying to use non-existent singleton! It has been probably "
                                     "destroyed since your getService.");
    const auto first = theRegister().getService<Service>("<unknown>", G_MAIN_LOOP);
    const auto second = theRegister().getService<Service>("b", G_MAIN_LOOP);
    EXPECT_DEATH(shortLived.reset(),
                 "MESSAGE: Singleton \\(G_MAIN_LOOP=G_MAIN_LOOP\\) is still used by: \\[<unknown>\\] \\[b\\]");
    EXPECT_DEATH(std::exit(0), "ASSERTION FAILED: m_needed == 0, .*\ndlog fatal: \\[\\]")
        << "the register is destroyed while guards still exist";
}

} // namespace
} // namespace Nerix::Tests
