#pragma once

#include "document/CSableManagerDoc.h"

namespace sable::bench {

struct ChartSize
{
    int members = 100000;
    int departments = 5000;
    int maxDepth = 7;
    int memberships = 150000;
    int ranks = 100;
    int folders = 2000;
    int groupAuthorities = 20000;
    int userAuthorities = 50000;
};

// A large, believable chart, the same for the same size: departments up to maxDepth levels, every
// member in a department and some in two, Korean names.
ChartContents generateChart(const ChartSize& size);

} // namespace sable::bench
