#include <gtest/gtest.h>

#include "synclink/pipe_server_trust.h"

namespace {
// S-1-5-21-<a>-<b>-<c>-<rid>: a user of a machine or domain.
SidBytes UserSid(unsigned long rid) {
  SidBytes sid = {1, 5, 0, 0, 0, 0, 0, 5};
  for (unsigned long sub : {21ul, 111ul, 222ul, 333ul, rid}) {
    for (int i = 0; i < 4; ++i) sid.push_back(static_cast<unsigned char>(sub >> (8 * i)));
  }
  return sid;
}

PipeServerFacts OwnSyncApp() {
  PipeServerFacts facts;
  facts.ourUser = UserSid(1001);
  facts.ourSession = 1;
  facts.pipeOwner = UserSid(1001);
  facts.serverProcessId = 4242;
  facts.serverUser = UserSid(1001);
  facts.serverSession = 1;
  return facts;
}
}  // namespace

TEST(JudgePipeServer, TrustsTheUsersOwnProcessInTheUsersSessionOwningThePipe) {
  EXPECT_EQ(JudgePipeServer(OwnSyncApp()), PipeServerVerdict::Trusted);
}

TEST(JudgePipeServer, RefusesAServerRunningAsAnotherUser) {
  PipeServerFacts facts = OwnSyncApp();
  facts.serverUser = UserSid(1002);
  EXPECT_EQ(JudgePipeServer(facts), PipeServerVerdict::ServerIsAnotherUser);
  EXPECT_EQ(DistrustText(PipeServerVerdict::ServerIsAnotherUser, facts),
            L"couldn't trust the sync app's pipe: its server runs as another user - S-1-5-21-111-222-333-1002, "
            L"process 4242");
}

TEST(JudgePipeServer, RefusesAServiceEvenWhenThePipeIsOwnedByTheUser) {
  PipeServerFacts facts = OwnSyncApp();
  facts.serverUser = {1, 1, 0, 0, 0, 0, 0, 5, 18, 0, 0, 0};  // S-1-5-18, LocalSystem
  EXPECT_EQ(JudgePipeServer(facts), PipeServerVerdict::ServerIsAnotherUser);
  EXPECT_EQ(DistrustText(JudgePipeServer(facts), facts),
            L"couldn't trust the sync app's pipe: its server runs as another user - S-1-5-18, process 4242");
}

TEST(JudgePipeServer, RefusesTheUsersOwnProcessInAnotherSession) {
  PipeServerFacts facts = OwnSyncApp();
  facts.serverSession = 3;
  EXPECT_EQ(JudgePipeServer(facts), PipeServerVerdict::ServerInAnotherSession);
  EXPECT_EQ(DistrustText(JudgePipeServer(facts), facts),
            L"couldn't trust the sync app's pipe: its server runs in another session - session 3, process 4242, "
            L"ours is 1");
}

TEST(JudgePipeServer, RefusesAPipeOwnedByAnotherUser) {
  PipeServerFacts facts = OwnSyncApp();
  facts.pipeOwner = UserSid(500);
  EXPECT_EQ(JudgePipeServer(facts), PipeServerVerdict::OwnedByAnotherUser);
  EXPECT_EQ(DistrustText(JudgePipeServer(facts), facts),
            L"couldn't trust the sync app's pipe: it is owned by another user - S-1-5-21-111-222-333-500, "
            L"process 4242");
}

TEST(JudgePipeServer, DecidesByTheServerProcessWhenTheSystemNamesNoOwner) {
  PipeServerFacts facts = OwnSyncApp();
  facts.pipeOwner.clear();
  EXPECT_EQ(JudgePipeServer(facts), PipeServerVerdict::Trusted);
  facts.serverUser = UserSid(1002);
  EXPECT_EQ(JudgePipeServer(facts), PipeServerVerdict::ServerIsAnotherUser);
}

TEST(JudgePipeServer, TrustsNobodyWhileOurOwnUserIsUnknown) {
  PipeServerFacts facts = OwnSyncApp();
  facts.ourUser.clear();
  facts.serverUser.clear();
  facts.pipeOwner.clear();
  EXPECT_EQ(JudgePipeServer(facts), PipeServerVerdict::ServerIsAnotherUser);
}

TEST(SidText, WritesTheUsualTextOfASid) {
  EXPECT_EQ(SidText(UserSid(1000)), L"S-1-5-21-111-222-333-1000");
  EXPECT_EQ(SidText({1, 0, 0, 0, 0, 0, 0, 1}), L"S-1-1");
}

TEST(SidText, SaysSoForBytesThatAreNoSid) {
  EXPECT_EQ(SidText({}), L"(malformed SID)");
  EXPECT_EQ(SidText({1, 2, 0, 0, 0, 0, 0, 5, 18, 0, 0, 0}), L"(malformed SID)");  // one sub-authority short
  EXPECT_EQ(SidText({2, 0, 0, 0, 0, 0, 0, 5}), L"(malformed SID)");
}

TEST(SyncAppPipeNameFor, NamesThePipeAfterTheUser) {
  EXPECT_EQ(SyncAppPipeNameFor(L"ann"), L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-ann");
}

TEST(SyncAppPipeNameFor, GivesNoPipeWithoutAUserName) { EXPECT_EQ(SyncAppPipeNameFor(L""), L""); }
