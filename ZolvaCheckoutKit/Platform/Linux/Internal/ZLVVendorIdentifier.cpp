#include <boost/algorithm/string/case_conv.hpp>
#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVVendorIdentifier.h>

std::optional<std::string> ZLVVendorIdentifier::identifier(const std::string& machineIdentifier,
                                                           const std::string& application) try {
  const boost::uuids::uuid machine = boost::uuids::string_generator()(machineIdentifier);
  const boost::uuids::name_generator_sha1 nameGenerator(machine);
  return boost::to_upper_copy(boost::uuids::to_string(nameGenerator(application)));
} catch (const std::runtime_error&) {
  return std::nullopt;
}
