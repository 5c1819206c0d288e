#include <gtest/gtest.h>

#include "core/SessionManager.h"
#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

class Session : public ::testing::Test {
  protected:
    void SetUp() override { headless.install(); }
    ovix::testing::HeadlessPlatform headless = ovix::testing::HeadlessPlatform::create();
    ovix::SessionManager& session = ovix::SessionManager::shared();
};

TEST_F(Session, SaveWritesTokenThenStatusAsTwoWrites) {
    EXPECT_FALSE(headless.store->contains("ovix_status")) << "fresh install has no status at all";
    session.saveToken("tok-1");
    EXPECT_EQ(headless.store->journal(), (std::vector<std::string>{"set ovix_token", "set ovix_status"}));
    EXPECT_EQ(headless.store->string("ovix_token"), "tok-1");
    EXPECT_EQ(headless.store->string("ovix_status"), "login");
    EXPECT_EQ(ovix::OvixCore::shared().getTokenApp(), "tok-1");
}

TEST_F(Session, ClearRemovesTokenKeepsClientIdAndMarksLogout) {
    headless.store->setString("ovix_client_id", "game-7");
    session.saveToken("tok");
    session.clearToken();
    EXPECT_FALSE(headless.store->contains("ovix_token"));
    EXPECT_EQ(headless.store->string("ovix_status"), "logout");
    EXPECT_EQ(ovix::SessionManager::readString("ovix_client_id"), "game-7");
    EXPECT_EQ(ovix::OvixCore::shared().getTokenApp(), "");
    auto journal = headless.store->journal();
    EXPECT_EQ(std::vector<std::string>(journal.end() - 2, journal.end()),
              (std::vector<std::string>{"remove ovix_token", "set ovix_status"}));
}

TEST_F(Session, AMissingNonTextOrEmptyTokenReadsAsNoToken) {
    EXPECT_EQ(ovix::OvixCore::shared().getTokenApp(), "");
    EXPECT_EQ(ovix::SessionManager::readString("never-written"), "");
    headless.store->setInteger("ovix_token", 42);
    EXPECT_EQ(ovix::OvixCore::shared().getTokenApp(), "");
    session.saveToken("");
    EXPECT_TRUE(headless.store->contains("ovix_token")) << "stored all the same";
    EXPECT_EQ(headless.store->string("ovix_status"), "login");
    EXPECT_EQ(ovix::OvixCore::shared().getTokenApp(), "");
}

}  // namespace
