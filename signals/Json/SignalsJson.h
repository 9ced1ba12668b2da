// Signal strings as JSON, with the standards' field names. Sets are arrays of numbers, times whole seconds since 1970.
#pragma once

#include <string>

#include "signals/Gpp/GppString.h"

namespace quillon::signals {

// {"core":{...},"disclosedVendors":{...},"publisherTC":{...}}; missing segments are omitted.
void writeJson(std::string& json, const TcString& tc);
// {"header":{...},"tcfeuv2":{...},"usca":{...}}; a section of an unsupported type is a text, one without a prefix has
// its number as key.
void writeJson(std::string& json, const GppString& gpp);
// A single section.
void writeJson(std::string& json, const GppSection& section);
// A single segment.
void writeJson(std::string& json, const Record& record);

}  // namespace quillon::signals
