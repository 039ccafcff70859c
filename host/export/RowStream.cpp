#include "export/RowStream.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "isolation/RecordStream.h"

namespace {

constexpr size_t kBufferSize = size_t{1} << 16;
constexpr size_t kLargestFrame = size_t{1} << 30;

// The texts of a run, a column and a table, in the order in which they are sent. The object may be constant.
template <typename TOfRun>
auto TextsOfRun(TOfRun& run) {
    return std::array{&run.name,        &run.machineId, &run.uuid,       &run.serial, &run.collectedAt, &run.tool,
                      &run.toolVersion, &run.state,     &run.reasonCode, &run.reason, &run.file};
}
template <typename TOfColumn>
auto TextsOfColumn(TOfColumn& column) {
    return std::array{&column.name,         &column.property,    &column.cimType,    &column.unit,
                      &column.declaredUnit, &column.description, &column.nullMeaning};
}
template <typename TOfTable>
auto TextsOfTable(TOfTable& table) {
    return std::array{&table.name, &table.nameWithPrefix, &table.className};
}

// Text and numbers as TRecordReader takes them.
template <typename TNumber>
void AppendNumber(std::string& bytes, TNumber number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void AppendText(std::string& bytes, std::string_view text) {
    AppendNumber(bytes, static_cast<uint32_t>(text.size()));
    bytes.append(text);
}

// False if the other process has ended.
bool SendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(sent));
    }
    return true;
}

std::string ReceiveExactly(int socket, size_t count) {
    std::string bytes(count, '\0');
    for (size_t done = 0; done < count;) {
        const ssize_t received = recv(socket, bytes.data() + done, count - done, 0);
        if (received < 0 && errno == EINTR) continue;
        if (received <= 0) throw TRecordError();
        done += static_cast<size_t>(received);
    }
    return bytes;
}

TColumn TakeColumn(TRecordReader& bytes) {
    TColumn column;
    for (std::string* text : TextsOfColumn(column)) bytes.TakeText(*text);
    column.kind = bytes.TakeNumber<EColumn>();
    column.bits = bytes.TakeNumber<int>();
    column.isVolatile = bytes.TakeNumber<uint8_t>() != 0;
    return column;
}

TTable TakeTable(TRecordReader& bytes) {
    TTable table;
    for (std::string* text : TextsOfTable(table)) bytes.TakeText(*text);
    table.isAssociation = bytes.TakeNumber<uint8_t>() != 0;
    while (!bytes.IsAtEnd()) table.columns.push_back(TakeColumn(bytes));
    return table;
}

TCell TakeCell(TRecordReader& bytes) {
    TCell cell;
    cell.kind = bytes.TakeNumber<TCell::EKind>();
    if (cell.kind == TCell::eInteger || cell.kind == TCell::eReference) cell.integer = bytes.TakeNumber<int64_t>();
    if (cell.kind == TCell::eReal) cell.real = bytes.TakeNumber<double>();
    if (cell.kind == TCell::eDigits || cell.kind == TCell::eText || cell.kind == TCell::eReference)
        bytes.TakeText(cell.text);
    return cell;
}

TRow TakeRow(TRecordReader& bytes, const TTable& table) {
    TRow row;
    row.id = bytes.TakeNumber<int64_t>();
    bytes.TakeText(row.key);
    row.cells.reserve(table.columns.size());
    for (size_t i = 0; i < table.columns.size(); ++i) row.cells.push_back(TakeCell(bytes));
    while (!bytes.IsAtEnd()) {
        const auto column = static_cast<size_t>(bytes.TakeNumber<uint32_t>());
        if (column >= table.columns.size()) throw TRecordError();
        row.missing.push_back({column, bytes.TakeText(), bytes.TakeText()});
    }
    return row;
}

}  // namespace

TRowSender::TRowSender(int socket, const IRunSink& wishes)
    : fSocket(socket), fWantsDocuments(wishes.WantsDocuments()), fWantsPaths(wishes.WantsPaths()) {}

void TRowSender::PutText(std::string_view text) { AppendText(fBuffer, text); }

template <typename TNumber>
void TRowSender::PutNumber(TNumber number) {
    AppendNumber(fBuffer, number);
}

TVerdict TRowSender::Decide(const TRun& run) {
    StartFrame(EFrame::eRun);
    for (const std::string* text : TextsOfRun(run)) PutText(*text);
    PutNumber(run.collectedMicroseconds);
    PutNumber(run.fingerprint);
    PutNumber<uint8_t>(!run.superuser ? 2 : *run.superuser ? 1 : 0);
    for (const std::string& name : run.knownClasses) PutText(name);
    EndFrame();
    Flush();
    return ReceiveVerdict(fSocket);
}

// Its columns are sent once; then it goes by its number.
void TRowSender::Table(const TTable& table) {
    const auto [found, isNew] = fTables.emplace(&table, static_cast<uint32_t>(fTables.size()));
    StartFrame(EFrame::eTable);
    PutNumber(found->second);
    if (isNew) PutTable(table);
    EndFrame();
}

void TRowSender::Row(const TTable& table, TRow&& row) {
    StartFrame(EFrame::eRow);
    PutNumber(fTables.at(&table));
    PutNumber(row.id);
    PutText(row.key);
    for (const TCell& cell : row.cells) PutCell(cell);
    for (const TMissingValue& missing : row.missing) {
        PutNumber(static_cast<uint32_t>(missing.column));
        PutText(missing.reason);
        PutText(missing.source);
    }
    EndFrame();
}

void TRowSender::Document(std::string&& document) {
    StartFrame(EFrame::eDocument);
    PutText(document);
    EndFrame();
}

void TRowSender::End() {
    StartFrame(EFrame::eEnd);
    EndFrame();
    Flush();
}

void TRowSender::Unreadable(const std::string& why) {
    StartFrame(EFrame::eUnreadable);
    PutText(why);
    EndFrame();
    Flush();
}

void TRowSender::StartFrame(EFrame kind) {
    fFrame = fBuffer.size();
    PutNumber<uint32_t>(0);
    PutNumber(kind);
}

void TRowSender::EndFrame() {
    const auto size = static_cast<uint32_t>(fBuffer.size() - fFrame - sizeof(uint32_t));
    std::memcpy(&fBuffer[fFrame], &size, sizeof size);
    if (fBuffer.size() >= kBufferSize) Flush();
}

// Without the other process there is nothing left to do.
void TRowSender::Flush() {
    if (!SendAll(fSocket, fBuffer)) throw TRecordError();
    fBuffer.clear();
}

void TRowSender::PutTable(const TTable& table) {
    for (const std::string* text : TextsOfTable(table)) PutText(*text);
    PutNumber<uint8_t>(table.isAssociation ? 1 : 0);
    for (const TColumn& column : table.columns) {
        for (const std::string* text : TextsOfColumn(column)) PutText(*text);
        PutNumber(column.kind);
        PutNumber(column.bits);
        PutNumber<uint8_t>(column.isVolatile ? 1 : 0);
    }
}

void TRowSender::PutCell(const TCell& cell) {
    PutNumber(cell.kind);
    if (cell.kind == TCell::eInteger || cell.kind == TCell::eReference) PutNumber(cell.integer);
    if (cell.kind == TCell::eReal) PutNumber(cell.real);
    if (cell.kind == TCell::eDigits || cell.kind == TCell::eText || cell.kind == TCell::eReference) PutText(cell.text);
}

const TTable& TTablePool::Of(std::string_view bytes) {
    if (const auto found = fTables.find(bytes); found != fTables.end()) return *found->second;
    TRecordReader reader(bytes);
    TTable table = TakeTable(reader);
    for (const TTable* own : {&ClassStateTable(), &ChangeTable()})
        if (table.className.empty() && table.name == own->name) return *own;
    return *fTables.emplace(bytes, std::make_unique<const TTable>(std::move(table))).first->second;
}

bool TRowReceiver::TakeFrame() {
    if (!Look(fStart)) {
        fBytes.erase(0, fStart);
        fPeeked -= std::min(fPeeked, fStart);
        fStart = 0;
        return false;
    }
    fStart += sizeof(uint32_t) + sizeof(EFrame) + fPayload.size();
    fPeeked = std::max(fPeeked, fStart);
    return true;
}

bool TRowReceiver::PeekFrame() {
    if (!Look(fPeeked)) return false;
    fPeeked += sizeof(uint32_t) + sizeof(EFrame) + fPayload.size();
    return true;
}

bool TRowReceiver::Look(size_t offset) {
    const std::string_view bytes = std::string_view(fBytes).substr(offset);
    if (bytes.size() < sizeof(uint32_t)) return false;
    TRecordReader reader(bytes);
    const size_t size = reader.TakeNumber<uint32_t>();
    if (size == 0 || size > kLargestFrame) throw TRecordError();
    if (reader.BytesLeft() < size) return false;
    fKind = reader.TakeNumber<EFrame>();
    fPayload = bytes.substr(sizeof(uint32_t) + sizeof(EFrame), size - sizeof(EFrame));
    return true;
}

TRun TRowReceiver::Run() const {
    TRecordReader reader(fPayload);
    TRun run;
    for (std::string* text : TextsOfRun(run)) reader.TakeText(*text);
    run.collectedMicroseconds = reader.TakeNumber<int64_t>();
    run.fingerprint = reader.TakeNumber<uint64_t>();
    if (const auto superuser = reader.TakeNumber<uint8_t>(); superuser != 2) run.superuser = superuser != 0;
    while (!reader.IsAtEnd()) run.knownClasses.push_back(reader.TakeText());
    return run;
}

std::string TRowReceiver::Text() const { return TRecordReader(fPayload).TakeText(); }

void TRowReceiver::PassOn(IRunSink& sink) {
    TRecordReader reader(fPayload);
    const auto number = static_cast<size_t>(reader.TakeNumber<uint32_t>());
    if (fKind == EFrame::eTable && !reader.IsAtEnd() && number == fTables.size())
        fTables.push_back(&fPool.Of(fPayload.substr(sizeof(uint32_t))));
    if (number >= fTables.size()) throw TRecordError();
    if (fKind == EFrame::eTable) return sink.Table(*fTables[number]);
    sink.Row(*fTables[number], TakeRow(reader, *fTables[number]));
}

void SendVerdict(int socket, const TVerdict& verdict) {
    std::string bytes;
    AppendNumber<uint32_t>(bytes, 0);
    AppendNumber(bytes, verdict.what);
    for (const TVerdict::TNeighbour& neighbour : verdict.neighbours) {
        AppendNumber<uint8_t>(bytes, neighbour.isOlder ? 1 : 0);
        for (const std::string* text : {&neighbour.document, &neighbour.file, &neighbour.collectedAt})
            AppendText(bytes, *text);
    }
    const auto size = static_cast<uint32_t>(bytes.size() - sizeof(uint32_t));
    std::memcpy(bytes.data(), &size, sizeof size);
    SendAll(socket, bytes);  // that the process has ended is noticed when it sends no more
}

TVerdict ReceiveVerdict(int socket) {
    const std::string head = ReceiveExactly(socket, sizeof(uint32_t));
    const std::string bytes = ReceiveExactly(socket, TRecordReader(head).TakeNumber<uint32_t>());
    TRecordReader reader(bytes);
    TVerdict verdict;
    verdict.what = reader.TakeNumber<TVerdict::EWhat>();
    while (!reader.IsAtEnd()) {
        TVerdict::TNeighbour neighbour{};
        neighbour.isOlder = reader.TakeNumber<uint8_t>() != 0;
        for (std::string* text : {&neighbour.document, &neighbour.file, &neighbour.collectedAt}) reader.TakeText(*text);
        verdict.neighbours.push_back(std::move(neighbour));
    }
    return verdict;
}
