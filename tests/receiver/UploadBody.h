// Bodies of uploads, good ones.
#pragma once

#include <boost/json.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace quillon::test {

struct PurposeAnswer {
  std::int64_t purpose = 1;
  std::string status = "granted";
  std::int64_t time = 1'700'000'000;
};

inline boost::json::object uploadObject(const std::string& subject, const std::vector<PurposeAnswer>& answers) {
  boost::json::array purposes;
  for (const auto& [purpose, status, time] : answers) {
    purposes.push_back(boost::json::object{
        {"purpose_id", purpose}, {"consent_status", status}, {"timestamp", time}, {"is_essential", false}});
  }
  auto upload = boost::json::parse(R"({"device": "Linux", "implicit_consent": false, "version": 3, "permissions": [],
    "is_test_mode": false, "ad_id": "", "platform": "ios", "banner_info": "opt-in"})")
                    .as_object();
  upload["uuid"] = subject;
  upload["app_uuid"] = "reader";
  upload["purpose_consents"] = std::move(purposes);
  return upload;
}

inline std::string uploadBody(const std::string& subject, const std::vector<PurposeAnswer>& answers) {
  return boost::json::serialize(uploadObject(subject, answers));
}

}  // namespace quillon::test
