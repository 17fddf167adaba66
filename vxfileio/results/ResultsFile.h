#pragma once

#include <map>
#include <string_view>

#include "vxfileio/frame/Enumerations.h"
#include "vxfileio/xmlarchive/XmlFields.h"

/// @file
/// What results files consist of, beside the fields of each class.

namespace vxfileio {

namespace results {

inline constexpr std::string_view kResultsFileType = "VXResults";
inline constexpr std::string_view kResultsOpenFailed = "Could not open results file: ";

inline constexpr std::string_view kResultsElement = "Results";
inline constexpr std::string_view kTaskElement = "Task";
inline constexpr std::string_view kRecordingElement = "Recording";
inline constexpr std::string_view kWellElement = "Well";
inline constexpr std::string_view kWellIDElement = "WellID";
inline constexpr std::string_view kResponseElement = "Response";

}  // namespace results

/// A list of responses; the key of each comes back from its label, the last of one key staying.
template <class Object, class Response>
struct CResponsesField {
    std::string_view tag;
    std::map<enResponseType, Response> Object::*member;

    void Put(CXmlFileArchive& archive, const Object& object) const {
        PutList(archive, object.*member, [&](const auto& response) { response.second.Save(archive); });
    }
    void Get(CXmlFileArchive& archive, Object& object) const {
        auto& responses = object.*member;
        responses.clear();
        GetEntries<Response>(
            archive, [&](Response& response) { response.Load(archive); },
            [&](Response response) {
                const auto type = ValueOf<enResponseType>(response.Label);
                responses[type] = std::move(response);
            });
    }
};
template <class Object, class Response>
CResponsesField(std::string_view, std::map<enResponseType, Response> Object::*) -> CResponsesField<Object, Response>;

}  // namespace vxfileio
