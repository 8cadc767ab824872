// cpu_quota.hpp - how many processors' time the control groups leave to this process.
//
// A container limited to two processors still sees every processor of its host; threads beyond the
// quota only make the kernel stop all of them for the rest of each period. Both generations of the
// interface are read: cpu.max, and cpu.cfs_quota_us with cpu.cfs_period_us. A quota of a parent
// group holds for its children.
#pragma once

namespace vox {

// Processors, rounded up; 0: no limit.
int read_cpu_quota(const char *cgroup_path, const char *mountinfo_path);

} // namespace vox
