#ifndef KYR_HOST_EXPORT_ROWSTREAM_H
#define KYR_HOST_EXPORT_ROWSTREAM_H

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "export/RunSink.h"

/// What a process that reads collections sends: for each a run with its rows and an end, or why it cannot be read, also
/// in place of the end.
enum class EFrame : uint8_t { eRun, eUnreadable, eTable, eRow, eDocument, eEnd };

/// The sink in a process that reads collections: the calls go to the process that stores them, through a socket.
class TRowSender : public IRunSink {
public:
    /// The wishes are those of the sink at the other end.
    TRowSender(int socket, const IRunSink& wishes);

    bool WantsDocuments() const override { return fWantsDocuments; }
    bool WantsPaths() const override { return fWantsPaths; }
    TVerdict Decide(const TRun& run) override;
    void Begin(const TRun&) override {}
    void Table(const TTable& table) override;
    void Row(const TTable& table, TRow&& row) override;
    void Document(std::string&& document) override;
    void End() override;
    void Abandon() override {}
    void Finish() override {}
    /// The collection cannot be read, or not further.
    void Unreadable(const std::string& why);

private:
    void StartFrame(EFrame kind);
    void EndFrame();
    void Flush();
    template <typename TNumber>
    void PutNumber(TNumber number);
    void PutText(std::string_view text);
    void PutTable(const TTable& table);
    void PutCell(const TCell& cell);

    const int fSocket;
    const bool fWantsDocuments;
    const bool fWantsPaths;
    std::string fBuffer;
    size_t fFrame = 0;  // where the frame begins
    std::unordered_map<const TTable*, uint32_t> fTables;
};

/// Tables of the same content are the same object.
class TTablePool {
public:
    /// From the bytes of a frame. Raises TRecordError.
    const TTable& Of(std::string_view bytes);

private:
    // Those of classes, by their bytes.
    std::map<std::string, std::unique_ptr<const TTable>, std::less<>> fTables;
};

/// Takes what a TRowSender sends apart. All functions raise TRecordError for bytes that none sends.
class TRowReceiver {
public:
    explicit TRowReceiver(TTablePool& pool) : fPool(pool) {}

    void Add(std::string_view bytes) { fBytes.append(bytes); }
    /// The bytes that were not taken yet.
    size_t BytesHeld() const { return fBytes.size() - fStart; }
    /// Takes the next frame; false if it is not complete.
    bool TakeFrame();
    /// Looks at frames without taking them, each once; false if the next one is not complete.
    bool PeekFrame();
    /// Of the frame that was last taken or looked at.
    EFrame Kind() const { return fKind; }
    TRun Run() const;
    std::string Text() const;
    /// For the frames of a table and a row.
    void PassOn(IRunSink& sink);

private:
    bool Look(size_t offset);

    TTablePool& fPool;
    std::string fBytes;
    size_t fStart = 0;   // what was taken ends there
    size_t fPeeked = 0;  // what was looked at ends there
    EFrame fKind = EFrame::eEnd;
    std::string_view fPayload;
    std::vector<const TTable*> fTables;
};

/// The answer to Decide: written by the process that stores, received by the one that reads, where it raises
/// TRecordError if the other process has ended.
void SendVerdict(int socket, const TVerdict& verdict);
TVerdict ReceiveVerdict(int socket);

#endif
