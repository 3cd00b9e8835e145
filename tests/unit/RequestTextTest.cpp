// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ProfileKey.h"
#include "TextTables.h"
#include "vela/Requests.h"
#include "vela/Responses.h"

namespace vela {
namespace {

std::shared_ptr<ProfileKey> makeKey(int techType, int profileId, unsigned long token) {
    return std::make_shared<ProfileKey>(
        static_cast<TechType>(techType), profileId, token,
        [](const std::shared_ptr<ClientRequest>&) { return std::shared_ptr<ClientResponse>(); });
}

TEST(RequestText, KeysPrintTechnologyIdAndToken) {
    EXPECT_EQ(makeKey(0, 5, 12)->dump(), "3GPP:5 token=12");
    EXPECT_EQ(makeKey(1, 0, 0)->dump(), "3GPP2:0 token=0");
    EXPECT_EQ(makeKey(7, 3, 18446744073709551615UL)->dump(), "7:3 token=18446744073709551615");
}

TEST(RequestText, Requests) {
    const auto key = makeKey(0, 5, 12);
    const ModifyProfileParams changes(paramsOf("apn=a"));
    const FilterProfileParams criteria = filterOf("id=3");
    CallbackRequest none;
    CallbackRequest release;
    release.setReleaseToken(4);
    CallbackRequest both;
    both.setReleaseToken(4);
    both.setExpirationInfo([] {}, key, 9);
    CallbackRequest expired;
    expired.setExpirationInfo([] {}, std::weak_ptr<IProfileKey>(), 9);
    const std::vector<std::pair<std::string, std::string>> table{
        {AddRequest(AddProfileParams(true, TechType::TECH_3GPP2, false)).dump(),
         "Add 3GPP2 persist=true: IsIAProfile=false,"},
        {ModifyRequest(changes, key).dump(), "Modify 3GPP:5 token=12 ApnName=a,"},
        {ModifyRequest(changes, nullptr).dump(), "Modify  ApnName=a,"},
        {DeleteRequest(key).dump(), "Delete 3GPP:5 token=12"},
        {DeleteRequest(nullptr).dump(), "Delete "},
        {FilterRequest(criteria).dump(), "Filter params: None: id=3,"},
        {MatchRequest(criteria, key).dump(), "Match 3GPP:5 token=12 None: id=3,"},
        {MatchRequest(criteria, nullptr).dump(), "Match  None: id=3,"},
        {GetRequest(key).dump(), "Get 3GPP:5 token=12"},
        {GetRequest(nullptr).dump(), "Get "},
        {none.dump(), "Callback "},
        {release.dump(), "Callback Release 4"},
        {both.dump(), "Callback Release 4Register 3GPP:5 token=12 9"},
        {expired.dump(), "Callback Register null 9"},
        {RefreshRequest(PDCRefreshStatus::RefreshCompleted).dump(), "Refresh "},
    };
    for (const auto& [actual, expected] : table) {
        EXPECT_EQ(actual, expected);
    }
    EXPECT_FALSE(none.hasReleaseToken());
    EXPECT_FALSE(release.hasExpirationInfo());
    EXPECT_TRUE(expired.hasExpirationInfo());
}

TEST(RequestText, Responses) {
    const auto key = makeKey(1, 2, 3);
    const std::vector<std::pair<std::string, std::string>> table{
        {AddResponse(Status::Success, key).dump(), "Add Success 3GPP2:2 token=3"},
        {AddResponse(Status::Failure, nullptr).dump(), "Add Failure "},
        {ModifyResponse(Status::Success).dump(), "Modify Success"},
        {DeleteResponse(Status::Failure).dump(), "Delete Failure"},
        {FilterResponse(Status::Success, {}).dump(), "Filter Success "},
        {FilterResponse(Status::Success, {key, nullptr}).dump(),
         "Filter Success 3GPP2:2 token=3,null,"},
        {MatchResponse(Status::Success, true).dump(), "Match Success true"},
        {MatchResponse(Status::Failure, false).dump(), "Match Failure false"},
        {GetResponse(Status::Success, paramsOf("apn=a")).dump(), "Get Success ApnName=a,"},
        {GetResponse(Status::Failure, std::nullopt).dump(), "Get Failure "},
        {CallbackResponse(Status::Success).dump(), "Callback Success"},
        {RefreshResponse(static_cast<Status>(5)).dump(), "Refresh 5"},
    };
    for (const auto& [actual, expected] : table) {
        EXPECT_EQ(actual, expected);
    }
}

}  // namespace
}  // namespace vela
