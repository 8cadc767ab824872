// accuracy_test.cpp - a million arguments for each function, precision and accuracy on every kernel set, and all
// special values: the error of each result, and what is reported about it.
//
// With VM_ACCURACY_TABLE in the environment, the largest errors are printed as a table. VM_EVERY_FLOAT=7,9 takes all
// floats through the functions of one argument on these kernel sets, ten minutes or so per function.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "serv/cpu.hpp"
#include "serv/kernel_sets.hpp"
#include "tests/vm/exact.hpp"
#include "vm/kernel_index.hpp"
#include "vox/service.h"

namespace {

using namespace test;

// Optimised code of the one compiler; the others and the sanitizers have a look at each stratum.
#if defined(NDEBUG) && defined(__OPTIMIZE__) && !defined(__clang__) &&                             \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
constexpr size_t sample_size = 1 << 20, slices = 2039;
#else
constexpr size_t sample_size = 1 << 15, slices = 65521;
#endif
constexpr size_t chunk = 4096;

// In the order of the modes' values.
constexpr const char *accuracy_names[] = {"", "LA", "HA", "EP"};

// In ulp; of TQM_EP in bits, of subnormal numbers their last.
template <class T>
constexpr double bound(int accuracy) {
    return accuracy == TQM_LA ? 4 : accuracy == TQM_HA ? 1 : sizeof(T) == 4 ? 0x1p-11 : 0x1p-26;
}

struct largest {
    double error = 0;
    double a = 0, b = 0, r = 0;
};

// By function, then by kernel index and accuracy.
std::map<std::string, std::map<std::pair<int, int>, largest>> errors;

// What the library said about the elements of a chunk.
signed char said[chunk];
tqmErrorContext told[chunk];
size_t told_wrong;

int listen(tqmErrorContext *context) {
    const auto i = size_t(context->iIndex);
    if (i >= chunk || said[i] != 0) {
        ++told_wrong;
        return 0;
    }
    told[i] = *context;
    said[i] = static_cast<signed char>(context->iCode);
    return 0;
}

template <class T>
bool same(T x, T y) {
    return std::isnan(x) ? std::isnan(y) : x == y && std::signbit(x) == std::signbit(y);
}

// What is to be said about a result, by the rules of tqm.h.
template <class T>
bool right_status(int status, T a, T b, T r, wider<T> y, bool rational) {
    if (std::isnan(a) || std::isnan(b))
        return status == TQM_STATUS_OK;
    if (std::isnan(y))
        return status == TQM_STATUS_ERRDOM;
    if (std::isinf(y))
        return status == (std::isinf(a) || std::isinf(b) ? TQM_STATUS_OK : TQM_STATUS_SING);
    if (std::isinf(r))
        return status == TQM_STATUS_OVERFLOW;
    if (std::fabs(r) > limits<T>::min() || y == 0 || (rational && y == r))
        return status == TQM_STATUS_OK;
    // The least normal number may be what a smaller one was rounded to, before or after the question.
    const bool either = std::fabs(r) == limits<T>::min();
    return status == TQM_STATUS_UNDERFLOW || (either && status == TQM_STATUS_OK);
}

template <class T>
class checker {
  public:
    // The first ones are special values.
    checker(const vector_function<T> &f, const std::vector<T> &first, const std::vector<T> &second,
            size_t special, std::set<int> sets = {})
        : f_(f), a_(first), b_(second), special_(special), sets_(std::move(sets)), r_(chunk) {
        if (sets_.empty())
            for (int index = 0; index < vox::vm::index_count; ++index)
                sets_.insert(index);
        std::erase_if(sets_, [](int i) { return !vox::kernel_index_runs(vox::this_cpu(), i); });
    }

    void run() {
        for (size_t begin = 0; begin < a_.size(); begin += count_) {
            begin_ = begin, count_ = 1;
            while (count_ < chunk && begin + count_ < a_.size() &&
                   (f_.shape != arguments::fixed || b_[begin + count_] == b_[begin]))
                ++count_;
            a = &a_[begin], b = &b_[begin];
            exact_.compute(f_, count_, a, b);
            for (const int index : sets_)
                for (int accuracy = TQM_LA; accuracy <= TQM_EP; ++accuracy)
                    if (index >= 2 || accuracy == TQM_HA)
                        try_kernel(index, accuracy);
        }
        EXPECT_LT(exact_.worst, reference_error<T>);
        for (const auto &[key, e] : errors[f_.name])
            EXPECT_LT(e.error, bound<T>(key.second) * (1 - reference_error<T>))
                << f_.name << " index " << key.first << ' ' << accuracy_names[key.second]
                << std::hexfloat << " of " << e.a << ", " << e.b << " is " << e.r;
        EXPECT_EQ(faults_, 0);
    }

  private:
    void try_kernel(int index, int accuracy) {
        vox::vm::known_index = index;
        std::fill_n(said, count_, 0);
        told_wrong = 0;
        f_.vm(int(count_), a, b, r_.data(), accuracy | TQM_ERRMODE_CALLBACK);
        if (told_wrong)
            fault(index, accuracy, 0, "the callback was told too much");
        largest &most = errors[f_.name][{index, accuracy}];
        wider<T> error = most.error;
        const wider<T> *inverse =
            accuracy == TQM_EP ? exact_.inverse_y.data() : exact_.inverse_ulp.data();
        const bool exact =
            f_.ha == rounding::always || (f_.ha == rounding::exact && accuracy == TQM_HA);
        for (size_t i = 0; i < count_; ++i) {
            const T r = r_[i];
            const wider<T> y = exact_.y[i];
            if (exact && !same(r, exact_.rounded[i]))
                fault(index, accuracy, i, "not rounded correctly");
            if (begin_ + i < special_ && is_exact(accuracy, i) && !same(r, T(y)))
                fault(index, accuracy, i, "not exact");
            if (said[i] && !right_context(i))
                fault(index, accuracy, i, "the callback was told something else");
            wider<T> e = std::fabs(r - y) * inverse[i];
            if (!(e < 2 * bound<T>(accuracy)) || said[i] || !std::isnormal(r)) {
                if (of_another_kind(r, y))
                    fault(index, accuracy, i, "another kind of value");
                if (!right_status(said[i], a[i], b[i], r, y, exact_.rational[i]))
                    fault(index, accuracy, i, "another status");
                const wider<T> apart = distance(r, y);
                e = apart == 0 ? 0 : apart * inverse[i];
                if (std::isnan(e)) { // a subnormal number in TQM_EP
                    if (!(apart * exact_.inverse_ulp[i] < 1))
                        fault(index, accuracy, i, "not close enough");
                    e = 0;
                }
            }
            if (e > error) {
                error = e;
                most = {double(e), a[i], b[i], r};
            }
        }
    }
    // Whether the result of a special value is the number next to y: in TQM_HA where that is as good as y, in all
    // accuracies below the normal numbers, and where it is 1, but of 1 / sqrt(1).
    bool is_exact(int accuracy, size_t i) const {
        const wider<T> y = exact_.y[i], magnitude = std::fabs(y);
        const bool as_good = !(std::fabs(T(y) - y) * exact_.inverse_ulp[i] >= reference_error<T>);
        if (accuracy == TQM_HA)
            return as_good;
        return magnitude < limits<T>::min() ||
               (magnitude == limits<T>::min() && exact_.rational[i]) ||
               (as_good && T(magnitude) == 1 && f_.ha == rounding::near &&
                std::strcmp(f_.name + 2, "InvSqrt") != 0);
    }
    bool right_context(size_t i) const {
        const tqmErrorContext &c = told[i];
        return same(T(c.dbA1), a[i]) && same(T(c.dbR1), r_[i]) &&
               (f_.shape == arguments::one || same(T(c.dbA2), b[i])) &&
               c.iFuncNameLen == int(std::strlen(f_.name)) &&
               std::strcmp(c.cFuncName, f_.name) == 0;
    }
    void fault(int index, int accuracy, size_t i, const char *what) {
        if (++faults_ <= 8)
            ADD_FAILURE() << f_.name << " index " << index << ' ' << accuracy_names[accuracy]
                          << ": " << what << std::hexfloat << ", of " << a[i] << ", " << b[i]
                          << " is " << r_[i] << " with status " << int(said[i]) << " and not "
                          << exact_.y[i];
    }

    const vector_function<T> &f_;
    const std::vector<T> &a_, &b_;
    const size_t special_;
    std::set<int> sets_; // all that run, if there were none
    std::vector<T> r_;
    const T *a = nullptr, *b = nullptr;
    size_t begin_ = 0, count_ = 0;
    exact_values<T> exact_;
    int faults_ = 0;
};

// Zeros, infinities, NaN and the ends of the range; what is odd, even, or no integer; and where results leave the
// range: 2^big and e^big are too large, 2^-small is subnormal.
template <class T>
std::vector<T> special_values() {
    constexpr T eps = limits<T>::epsilon(), min = limits<T>::min(), before_half = T(0.5) - eps / 4;
    constexpr T big = sizeof(T) == 4 ? 150 : 1100, small = sizeof(T) == 4 ? 140 : 1060;
    std::vector<T> all;
    const auto add = [&all](auto... x) { all.insert(all.end(), {T(x)..., T(-x)...}); };
    add(0.0, limits<T>::denorm_min(), min, before_half, 0.5, 1, 1 + eps, 1.5, 2, 2.5, 3, small, big,
        big + 1, 2 * big, 2 * big + 1, 1 / eps - 1, 1 / eps, 1 / eps + 1, 1 / min, limits<T>::max(),
        limits<T>::infinity(), limits<T>::quiet_NaN());
    return all;
}

template <class T>
void check(const vector_function<T> &f) {
    samples<T> s(sample_size);
    const std::vector<T> special = special_values<T>();
    for (const T y : f.shape == arguments::one ? std::vector<T>{0} : special)
        for (const T x : special)
            s.add({x, y});
    const size_t count = s.a.size();
    f.strata(s);
    ASSERT_GE(s.a.size(), sample_size);
    checker<T>(f, s.a, s.b, count).run();
}

// Every n-th slice of them; all on the sets that the environment names.
void check_floats(const vector_function<float> &f) {
    std::set<int> sets;
    if (const char *const named = std::getenv("VM_EVERY_FLOAT")) {
        std::istringstream words(named);
        for (std::string set; std::getline(words, set, ',');)
            sets.insert(std::stoi(set));
    }
    std::vector<float> a(1 << 12), b(a.size());
    const size_t step = sets.empty() ? slices : 1;
    checker<float> of(f, a, b, 0, sets);
    for (size_t slice = step / 2; slice < (uint64_t(1) << 32) / a.size(); slice += step) {
        for (size_t i = 0; i < a.size(); ++i)
            a[i] = std::bit_cast<float>(uint32_t(slice * a.size() + i));
        of.run();
    }
}

class Accuracy : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        tqmSetErrorCallBack(listen);
        vox_domain_set_num_threads(1, VOX_DOMAIN_TQM);
    }
};

template <class T>
std::vector<std::string> names(bool of_two = true) {
    std::vector<std::string> all;
    for (const auto &f : vector_functions<T>())
        if (of_two || f.shape == arguments::one)
            all.emplace_back(f.name);
    return all;
}

TEST_P(Accuracy, IsWhatItsNameSays) {
    for (const auto &f : vector_functions<float>())
        if (f.name == GetParam())
            check(f);
    for (const auto &f : vector_functions<double>())
        if (f.name == GetParam())
            check(f);
}

class EveryFloat : public Accuracy {};
TEST_P(EveryFloat, IsWithinTheBounds) {
    for (const auto &f : vector_functions<float>())
        if (f.name == GetParam())
            check_floats(f);
}

const auto name_of = [](const auto &info) { return info.param; };
INSTANTIATE_TEST_SUITE_P(Single, Accuracy, testing::ValuesIn(names<float>()), name_of);
INSTANTIATE_TEST_SUITE_P(Double, Accuracy, testing::ValuesIn(names<double>()), name_of);
INSTANTIATE_TEST_SUITE_P(Single, EveryFloat, testing::ValuesIn(names<float>(false)), name_of);

// One row per function and precision: HA and LA in ulp, EP in bits; the largest of all sets, and of each.
class table : public testing::Environment {
    void TearDown() override {
        if (!std::getenv("VM_ACCURACY_TABLE"))
            return;
        std::printf("| function | accuracy | largest |");
        for (int index = 0; index < vox::vm::index_count; ++index)
            std::printf(" %d |", index);
        std::printf("\n|---|---|---|---|---|---|---|---|---|---|---|---|---|\n");
        for (const auto &[name, all] : errors)
            for (const int accuracy : {TQM_HA, TQM_LA, TQM_EP}) {
                double most = 0;
                for (const auto &[key, e] : all)
                    if (key.second == accuracy)
                        most = std::fmax(most, e.error);
                std::printf("| %s | %s |", name.c_str(), accuracy_names[accuracy]);
                print(accuracy, most);
                for (int index = 0; index < vox::vm::index_count; ++index)
                    if (const auto e = all.find({index, accuracy}); e != all.end())
                        print(accuracy, e->second.error);
                    else
                        std::printf(" |");
                std::printf("\n");
            }
    }
    static void print(int accuracy, double error) {
        if (accuracy == TQM_EP)
            std::printf(" %.1f |", -std::log2(std::fmax(error, 0x1p-64)));
        else
            std::printf(" %.3f |", error);
    }
};
const auto *const printed_table = testing::AddGlobalTestEnvironment(new table);

} // namespace
