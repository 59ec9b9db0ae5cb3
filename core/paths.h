// Relative paths of every directory and file of the library, the same in
// the temporary area ($TMPDIR) and the flash area where present.
#ifndef AUTHMNG_CORE_PATHS_H
#define AUTHMNG_CORE_PATHS_H

namespace authmng {

// Path buffers: at most 108 characters and the terminator.
constexpr int kPathLimit = 108;
constexpr int kPathBufferSize = kPathLimit + 1;

constexpr const char kWebauthDir[] = "/security/authmanage/webauth/";
constexpr const char kDot1xDir[] = "/security/authmanage/dot1x/";
constexpr const char kCppDir[] = "/security/authmanage/cpp/";

constexpr const char kDot1xStatisticCsv[] = "/security/authmanage/dot1x/dot1x_statistic.csv";
constexpr const char kDot1xAbnormalCsv[] = "/security/authmanage/dot1x/dot1x_abnormal.csv";
constexpr const char kWebauthStatisticCsv[] = "/security/authmanage/webauth/wba_statistic.csv";
constexpr const char kWebauthSubstatisticCsv[] =
    "/security/authmanage/webauth/wba_substatistic.csv";
constexpr const char kWebauthAbnormalCsv[] = "/security/authmanage/webauth/wba_abnormal.csv";
constexpr const char kEscapeLog[] = "/security/authmanage/log.txt";
constexpr const char kCppCsv[] = "/security/authmanage/cpp/cpp.csv";

}  // namespace authmng

#endif
