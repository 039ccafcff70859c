#include <pthread.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "kyr/TCIMDateTime.h"
#include "model/TSmallObject.h"
#include "platform/Sanitizers.h"
#include "support/SchemaBuilder.h"

namespace {

/// About how many values each thread makes; more with KYR_THREAD_OBJECTS in the environment.
unsigned ObjectsOfEach() {
    const char* const number = getenv("KYR_THREAD_OBJECTS");
    return number != nullptr ? static_cast<unsigned>(std::stoul(number)) : 20000;
}

void OnThreads(unsigned count, const std::function<void(unsigned)>& work) {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

/// What threads hand to one another.
template <typename T>
class TMailbox {
public:
    void Put(T content) {
        const std::lock_guard<std::mutex> lock(fMutex);
        fContent.push_back(std::move(content));
        fChanged.notify_one();
    }

    T Take() {
        std::unique_lock<std::mutex> lock(fMutex);
        fChanged.wait(lock, [this] { return !fContent.empty(); });
        T content = std::move(fContent.front());
        fContent.pop_front();
        return content;
    }

private:
    std::mutex fMutex;
    std::condition_variable fChanged;
    std::deque<T> fContent;
};

const std::string kSchema =
    "<CIM><DECLARATION><DECLGROUP><QUALIFIER.DECLARATION NAME='Key' TYPE='boolean'/><VALUE.OBJECT><CLASS NAME='Disk'>"
    "<PROPERTY NAME='Id' TYPE='uint32'><QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER></PROPERTY>"
    "<PROPERTY NAME='Caption' TYPE='string'/><PROPERTY NAME='Installed' TYPE='datetime'/>"
    "<PROPERTY.ARRAY NAME='Blocks' TYPE='uint16'/></CLASS></VALUE.OBJECT></DECLGROUP></DECLARATION></CIM>";
constexpr unsigned kValuesOfADisk = 8;  // the four properties, the array's elements and a key

class ThreadsTest : public LoggedTest {
protected:
    std::unique_ptr<TContainer> Filled(unsigned disks) const {
        auto container = std::make_unique<TContainer>();
        container->PopulateContainerFromFile(fSchemaPath);
        TCIMClass* const cls = container->GetClass("Disk");
        for (unsigned i = 0; i < disks; ++i) {
            const TCIMValue block(static_cast<unsigned short>(i));
            SchemaBuilder(*container)
                .AddInstance(*cls,
                             {{"Id", i},
                              {"Caption", "hard disk drive number " + std::to_string(i)},
                              {"Installed", TCIMDateTime("20040701120000.000000+060") + TCIMDateTime(i, 0, 0, 0, 0)},
                              {"Blocks", TCIMValue(CIM::eCIMUint16, 0, {block, block, block})}});
        }
        return container;
    }

    TempFolder fFolder;
    const std::string fSchemaPath = fFolder.Write("schema.xml", kSchema);
};

/// Reads every value, and gives what the disks' numbers come to.
unsigned long SumOf(const TContainer& container) {
    unsigned long sum = 0;
    for (const TCIMInstance* disk : container.GetClass("Disk")->EnumerateInstances(false)) {
        for (const TCIMProperty* property : disk->EnumerateProperties()) EXPECT_NE(property->ToString(), "");
        sum += static_cast<unsigned int>(disk->GetProperty("Id")->GetValue());
    }
    return sum;
}

unsigned long SumBelow(unsigned long count) { return count * (count - 1) / 2; }

/// An array of texts, too long to be held in place.
TCIMValue Texts(unsigned number) {
    const TCIMValue text("a text that is allocated on its own, number " + std::to_string(number));
    return TCIMValue(CIM::eCIMString, 0, {text, text});
}

TEST_F(ThreadsTest, EachFillsReadsAndDestroysContainersOfItsOwn) {
    constexpr unsigned kContainers = 4;
    const unsigned disks = ObjectsOfEach() / kContainers / kValuesOfADisk;
    for (const unsigned threads : {2, 4, 8}) {
        OnThreads(threads, [&](unsigned) {
            for (unsigned i = 0; i < kContainers; ++i) {
                const auto container = Filled(disks);
                EXPECT_EQ(SumOf(*container), SumBelow(disks));
                EXPECT_EQ(StatusOf([&] { container->GetClass("no name"); }), kyrStatusInvalidCIMName);
                container->GetClass("Disk")->GetPropertyDecl("Caption")->SetName("caption");
            }
        });
        EXPECT_EQ(fLog.TakeLines(), TLines(threads * kContainers, "0:CIM name 'no name' is invalid"));
    }
}

TEST_F(ThreadsTest, EachHandsContainersAndValuesToTheNext) {
    constexpr unsigned kRounds = 8;
    const unsigned disks = ObjectsOfEach() / kRounds / kValuesOfADisk, texts = ObjectsOfEach() / kRounds / 3;
    struct TParcel {
        std::unique_ptr<TContainer> container;
        std::vector<TCIMValue> values;
    };
    for (const unsigned threads : {2, 4, 8}) {
        std::vector<TMailbox<TParcel>> mailboxes(threads);
        OnThreads(threads, [&](unsigned self) {
            std::vector<TCIMValue> kept;
            for (unsigned i = 0; i < kRounds; ++i) {
                TParcel made{Filled(disks), {}};
                for (unsigned j = 0; j < texts; ++j) made.values.push_back(Texts(j));
                mailboxes[(self + 1) % threads].Put(std::move(made));
                TParcel received = mailboxes[self].Take();
                EXPECT_EQ(SumOf(*received.container), SumBelow(disks));
                for (unsigned j = 0; j < texts; ++j) EXPECT_EQ(received.values[j], Texts(j));
                for (unsigned j = 0; j < texts; j += 3) received.values[j] = 5u;
                kept.swap(received.values);
            }
        });
    }
}

// Each value's neighbours in memory are destroyed by other threads, and the maker keeps on making.
TEST_F(ThreadsTest, DestroyValuesSideBySideWithTheirMaker) {
    constexpr unsigned kThreads = 4;
    std::vector<TMailbox<std::vector<TCIMValue>>> mailboxes(kThreads);
    const unsigned rounds = ObjectsOfEach() / kThreads / 100;
    OnThreads(kThreads + 1, [&](unsigned self) {
        for (unsigned i = 0; i < rounds; ++i) {
            if (self < kThreads) {
                for (const TCIMValue& value : mailboxes[self].Take()) EXPECT_FALSE(value.IsNull());
                continue;
            }
            std::vector<std::vector<TCIMValue>> batches(kThreads);
            for (unsigned j = 0; j < 100 * kThreads; ++j) batches[j % kThreads].emplace_back(j);
            for (unsigned j = 0; j < kThreads; ++j) mailboxes[j].Put(std::move(batches[j]));
        }
    });
}

TEST_F(ThreadsTest, LeaveWhatOthersReadAndDestroyAfterThem) {
    constexpr unsigned kThreads = 4;
    const unsigned disks = ObjectsOfEach() / 4 / kValuesOfADisk;
    std::unique_ptr<TContainer> left[kThreads];
    TCIMValue values[kThreads];
    OnThreads(kThreads, [&](unsigned self) {
        left[self] = Filled(disks);
        values[self].Set(Texts(self));
    });
    OnThreads(kThreads, [&](unsigned self) {
        left[self] = Filled(disks);
        EXPECT_EQ(values[self], Texts(self));
        values[self].Set(Texts(self + 1));
    });
    for (unsigned i = 0; i < kThreads; ++i) EXPECT_EQ(values[i], Texts(i + 1));
    for (const auto& container : left) EXPECT_EQ(SumOf(*container), SumBelow(disks));
}

// After the core has seen the end of the thread, which goes by keys too.
TEST_F(ThreadsTest, DestroyValuesAtTheVeryEndOfAThread) {
    Texts(0);  // so that the core's key is the older one
    pthread_key_t key;
    ASSERT_EQ(pthread_key_create(&key, [](void* values) { delete static_cast<std::vector<TCIMValue>*>(values); }), 0);
    for (unsigned i = 0; i < 20; ++i)
        OnThreads(2, [&](unsigned self) { pthread_setspecific(key, new std::vector<TCIMValue>(3, Texts(self))); });
    pthread_key_delete(key);
}

#ifdef KYR_ADDRESS_SANITIZER
struct TProbe : TSmallObject {
    int number = 5;
};

TEST(SmallObjectDeathTest, AreWatchedOneByOneUnderAddressSanitizer) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT((std::make_unique<TProbe>(), exit(0)), ::testing::ExitedWithCode(0), "");
    EXPECT_DEATH((new TProbe, exit(0)), "detected memory leaks");
    const auto keepsTheSlab = std::make_unique<TProbe>();
    auto* const gone = new TProbe;
    volatile int* const number = &gone->number;
    EXPECT_DEATH(number[1] = 6, "use-after-poison");  // what the grain leaves behind the object
    delete gone;
    EXPECT_DEATH(*number = 6, "use-after-poison");
}
#else
// Not under AddressSanitizer, whose own allocator would hang in some of the children.
TEST_F(ThreadsTest, ForkWhileOthersMakeValues) {
    std::atomic<bool> isOver = false;
    OnThreads(3, [&](unsigned self) {
        while (self > 0 && !isOver) EXPECT_EQ(Texts(self), Texts(self));
        for (unsigned i = 0; self == 0 && i < 20; ++i) {
            const pid_t child = fork();
            if (child == 0) _exit(Texts(1) == Texts(1) ? 0 : 1);
            int status = -1;
            EXPECT_EQ(waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
        }
        if (self == 0) isOver = true;
    });
}
#endif

}  // namespace
