// accuracy_test.cpp - a million arguments for each function, precision and accuracy on every kernel set: the error
// of each result, and what is reported about it.
//
// With VM_ACCURACY_TABLE in the environment, the largest errors are printed as a table.
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "serv/cpu.hpp"
#include "serv/kernel_sets.hpp"
#include "tests/vm/exact.hpp"
#include "vm/kernel_index.hpp"
#include "vox/service.h"

namespace {

using namespace test;

// Optimised code of the one compiler; the others have a look at each stratum.
#if defined(NDEBUG) && defined(__OPTIMIZE__) && !defined(__clang__)
constexpr size_t sample_size = 1 << 20;
#else
constexpr size_t sample_size = 1 << 15;
#endif
constexpr size_t chunk = 4096;

// In the order of the modes' values.
constexpr const char *accuracy_names[] = {"", "LA", "HA", "EP"};

template <class T>
constexpr long double bound(int accuracy) {
    return accuracy == TQM_LA ? 4 : accuracy == TQM_HA ? 1 : std::ldexp(1.0L, -ep_bits<T>);
}

struct largest {
    long double error = 0;
    double a = 0, b = 0, r = 0;
};

// By function, then by kernel index and accuracy.
std::map<std::string, std::map<std::pair<int, int>, largest>> errors;

// What the library said about the elements of a chunk.
signed char said[chunk];
const char *expected_name;
const void *first_argument;
bool single, told_wrong;

int listen(tqmErrorContext *context) {
    const auto i = size_t(context->iIndex);
    if (i >= chunk || std::string(context->cFuncName) != expected_name) {
        told_wrong = true;
        return 0;
    }
    const double a = single ? double(static_cast<const float *>(first_argument)[i])
                            : static_cast<const double *>(first_argument)[i];
    told_wrong = told_wrong || context->dbA1 != a || said[i] != 0;
    said[i] = static_cast<signed char>(context->iCode);
    return 0;
}

// What is to be said about a result, by the rules of tqm.h.
template <class T>
bool right_status(int status, T a, T b, T r, long double y, bool rational) {
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
    checker(const vector_function<T> &f, samples<T> &s) : f_(f), a_(s.a), b_(s.b), r_(chunk) {}

    void run() {
        for (size_t begin = 0; begin < a_.size(); begin += count_) {
            count_ = 1;
            while (count_ < chunk && begin + count_ < a_.size() &&
                   (f_.shape != arguments::fixed || b_[begin + count_] == b_[begin]))
                ++count_;
            a = &a_[begin], b = &b_[begin];
            exact_.compute(f_, count_, a, b);
            for (int index = 0; index < vox::vm::index_count; ++index)
                if (vox::kernel_index_runs(vox::this_cpu(), index))
                    for (int accuracy = TQM_LA; accuracy <= TQM_EP; ++accuracy)
                        if (index >= 2 || accuracy == TQM_HA)
                            try_kernel(index, accuracy);
        }
        EXPECT_LT(exact_.worst, reference_error);
        for (const auto &[key, e] : errors[f_.name])
            EXPECT_LT(e.error, bound<T>(key.second) * (1 - reference_error))
                << f_.name << " index " << key.first << ' ' << accuracy_names[key.second]
                << std::hexfloat << " of " << e.a << ", " << e.b << " is " << e.r;
        EXPECT_EQ(faults_, 0);
    }

  private:
    void try_kernel(int index, int accuracy) {
        vox::vm::known_index = index;
        std::fill_n(said, count_, 0);
        expected_name = f_.name, first_argument = a, single = sizeof(T) == 4, told_wrong = false;
        f_.vm(int(count_), a, b, r_.data(), accuracy | TQM_ERRMODE_CALLBACK);
        if (told_wrong)
            fault(index, accuracy, 0, "the callback was told something else");
        largest &most = errors[f_.name][{index, accuracy}];
        long double error = most.error;
        const long double *inverse =
            accuracy == TQM_EP ? exact_.inverse_y.data() : exact_.inverse_ulp.data();
        const bool exact = f_.ha == rounding::exact && accuracy == TQM_HA;
        for (size_t i = 0; i < count_; ++i) {
            const T r = r_[i];
            const long double y = exact_.y[i];
            if (exact && r != exact_.rounded[i] &&
                !(std::isnan(r) && std::isnan(exact_.rounded[i])))
                fault(index, accuracy, i, "not rounded correctly");
            long double e = std::fabs(r - y) * inverse[i];
            if (!(e < 2 * bound<T>(accuracy)) || said[i] || !std::isnormal(r)) {
                if (of_another_kind(r, y))
                    fault(index, accuracy, i, "another kind of value");
                if (!right_status(said[i], a[i], b[i], r, y, exact_.rational[i]))
                    fault(index, accuracy, i, "another status");
                const long double apart = distance(r, y);
                e = apart == 0 ? 0 : apart * inverse[i];
                if (std::isnan(e)) { // a subnormal number in TQM_EP
                    if (!(apart * exact_.inverse_ulp[i] < 1))
                        fault(index, accuracy, i, "not close enough");
                    e = 0;
                }
            }
            if (e > error) {
                error = e;
                most = {e, a[i], b[i], r};
            }
        }
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
    std::vector<T> r_;
    const T *a = nullptr, *b = nullptr;
    size_t count_ = 0;
    exact_values<T> exact_;
    int faults_ = 0;
};

template <class T>
std::vector<T> special_values() {
    const T inf = limits<T>::infinity();
    std::vector<T> all = {limits<T>::quiet_NaN(), -limits<T>::quiet_NaN()};
    for (const T x : {T(0), limits<T>::denorm_min(), limits<T>::min(), T(0.5), T(1), T(1.5), T(2),
                      T(3), T(1 / limits<T>::epsilon()), limits<T>::max(), inf})
        all.insert(all.end(), {x, -x});
    return all;
}

template <class T>
void check(const vector_function<T> &f) {
    tqmSetErrorCallBack(listen);
    vox_domain_set_num_threads(1, VOX_DOMAIN_TQM);
    samples<T> s(sample_size);
    const std::vector<T> special = special_values<T>();
    for (const T y : f.shape == arguments::one ? std::vector<T>{0} : special)
        for (const T x : special)
            s.add({x, y});
    f.strata(s);
    ASSERT_GE(s.a.size(), sample_size);
    checker<T>(f, s).run();
}

class Accuracy : public testing::TestWithParam<std::string> {};

template <class T>
std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const auto &f : vector_functions<T>())
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

const auto name_of = [](const auto &info) { return info.param; };
INSTANTIATE_TEST_SUITE_P(Single, Accuracy, testing::ValuesIn(names<float>()), name_of);
INSTANTIATE_TEST_SUITE_P(Double, Accuracy, testing::ValuesIn(names<double>()), name_of);

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
                long double most = 0;
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
    static void print(int accuracy, long double error) {
        if (accuracy == TQM_EP)
            std::printf(" %.1f |", double(-std::log2(std::fmax(error, 0x1p-64L))));
        else
            std::printf(" %.3f |", double(error));
    }
};
const auto *const printed_table = testing::AddGlobalTestEnvironment(new table);

} // namespace
