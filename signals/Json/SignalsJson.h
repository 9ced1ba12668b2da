// Strings as JSON, under the names of the standards' tables. Sets are lists of numbers, times whole seconds, booleans
// true and false.
#pragma once

#include <string>

#include "signals/Gpp/GppString.h"

namespace quillon::signals {

// {"core":{...},"disclosedVendors":{...},"publisherTC":{...}}; segments that the string lacks are left out.
void writeJson(std::string& json, const TcString& tc);
// {"header":{...},"tcfeuv2":{...},"usca":{...}}; a section that nobody here can read is a text, and one without a
// prefix stands under its number.
void writeJson(std::string& json, const GppString& gpp);
// One section of it.
void writeJson(std::string& json, const GppSection& section);
// One segment.
void writeJson(std::string& json, const Record& record);

}  // namespace quillon::signals
