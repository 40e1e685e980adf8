#pragma once

// The JSON library is compiled in under a namespace of its own, so that it can never meet another
// copy that the host links, and without the marks that would export it.
#include <boost/config.hpp>
#undef BOOST_SYMBOL_VISIBLE
#define BOOST_SYMBOL_VISIBLE
namespace zlv_boost {
using boost::long_long_type;
using boost::ulong_long_type;
}  // namespace zlv_boost
#define boost zlv_boost
#ifdef ZLV_JSON_PARSER  // in one file, with all that the library has beside its headers
#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/src.hpp>
#else
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#endif
#undef boost
