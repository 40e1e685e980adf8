// The compiled part of Boost.JSON, which is otherwise used as headers.
#include <boost/json/src.hpp>
