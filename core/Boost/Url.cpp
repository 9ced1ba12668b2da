// The library's sources, compiled into ours: see quillon_boost.
#include <boost/url/src.hpp>
