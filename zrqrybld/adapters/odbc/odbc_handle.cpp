#include "zrqrybld/adapters/odbc/odbc_handle.h"

#include <locale.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "zrqrybld/adapters/odbc/odbc_text.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld::odbc {
namespace {

constexpr std::size_t kShortSecret = 3;
constexpr int kMostMessages = 8;

// How a driver says that it does not have a function.
constexpr std::string_view kNotSupported[] = {"HYC00", "IM001"};

// Attributes of ODBC are numbers in the place of pointers.
SQLPOINTER NumberAttribute(std::uintptr_t value) { return reinterpret_cast<SQLPOINTER>(value); }

struct Diagnosis {
  std::string state;
  SQLINTEGER native;
  std::string message;
};

std::vector<Diagnosis> Diagnose(SQLSMALLINT type, SQLHANDLE handle) {
  std::vector<Diagnosis> all;
  for (SQLSMALLINT record = 1; record <= kMostMessages; ++record) {
    std::u16string state(6, u'\0');
    std::u16string message(SQL_MAX_MESSAGE_LENGTH * 4, u'\0');
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    const SQLRETURN result = SQLGetDiagRecW(type, handle, record, Wide(state), &native, Wide(message),
                                            static_cast<SQLSMALLINT>(message.size()), &length);
    if (!SQL_SUCCEEDED(result)) break;
    // The length is that of the whole message, of which only so much was given.
    message.resize(
        std::min<std::size_t>(static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0)), message.size() - 1));
    message.resize(std::min(message.find(u'\0'), message.size()));
    state.resize(5);
    all.push_back({ToUtf8(state), native, std::string(TrimWhite(ToUtf8(message)))});
  }
  return all;
}

Phrase Describe(const std::vector<Diagnosis>& all, const Secrets& secrets) {
  std::string text;
  for (const Diagnosis& diagnosis : all) {
    const std::string line = "[" + diagnosis.state + "] " + diagnosis.message;
    if (text.find(line) != std::string::npos) continue;  // some drivers say everything twice
    text += (text.empty() ? "" : "\n") + line;
  }
  return text.empty() ? Phrase(text::OdbcGivesNoReason) : secrets.Hide(std::move(text));
}

// The texts of SQLGetInfo and of attributes come with their length in bytes.
std::string FromBytes(const std::u16string& buffer, SQLINTEGER bytes) {
  const auto units = static_cast<std::size_t>(std::max<SQLINTEGER>(bytes, 0)) / sizeof(char16_t);
  const std::u16string_view text = std::u16string_view(buffer).substr(0, std::min(units, buffer.size()));
  return ToUtf8(text.substr(0, text.find(u'\0')));  // some drivers count bytes that they did not write
}

}  // namespace

// --- Secrets ---

void Secrets::Add(const std::string& secret) {
  if (secret.empty()) return;
  secrets_.push_back(secret);
  std::string inBraces = ReplaceAll(secret, "}", "}}");
  if (inBraces != secret) secrets_.push_back(std::move(inBraces));
  std::ranges::sort(secrets_, std::ranges::greater(), &std::string::size);
}

std::string Secrets::Hide(std::string message) const {
  for (const std::string& secret : secrets_) {
    const bool isShort = secret.size() <= kShortSecret;
    for (std::size_t at = message.find(secret); at != std::string::npos; at = message.find(secret, at)) {
      const std::size_t end = at + secret.size();
      const bool inWord = (at > 0 && IsWordByte(message[at - 1])) || (end < message.size() && IsWordByte(message[end]));
      if (isShort && inWord) {
        at = end;
        continue;
      }
      message.replace(at, secret.size(), "***");
      at += 3;
    }
  }
  return message;
}

// --- Environment ---

Environment::Environment() : handle_(SQL_NULL_HANDLE) {
  if (Get() == SQL_NULL_HANDLE ||
      !SQL_SUCCEEDED(SQLSetEnvAttr(Get(), SQL_ATTR_ODBC_VERSION, NumberAttribute(SQL_OV_ODBC3), SQL_IS_UINTEGER))) {
    throw Error(ErrorConnectionFailed, text::OdbcOutOfMemory);
  }
}

// --- Utf8Scope ---

#ifdef _WIN32  // its drivers have Unicode functions, and the driver manager knows no locales

Utf8Scope::Utf8Scope() = default;
Utf8Scope::~Utf8Scope() = default;

#else

Utf8Scope::Utf8Scope() {
  const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (utf8 == nullptr) return;  // a system without it; the program's own locale has to do
  own_ = utf8;
  before_ = uselocale(utf8);
}

Utf8Scope::~Utf8Scope() {
  if (own_ == nullptr) return;
  uselocale(static_cast<locale_t>(before_));
  freelocale(static_cast<locale_t>(own_));
}

#endif

// --- DriverConnection ---

DriverConnection::DriverConnection(const std::string& connectionString, Secrets secrets)
    : secrets_(std::move(secrets)), link_(WithPatience(pulse_, [connectionString, hidden = secrets_] {
        auto link = std::make_shared<Link>();
        link->Open(connectionString, hidden);
        return link;
      })) {}

void DriverConnection::Link::Open(const std::string& connectionString, const Secrets& secrets) {
  const auto fail = [&](SQLSMALLINT type, SQLHANDLE failed) {
    throw Error(ErrorConnectionFailed, Describe(Diagnose(type, failed), secrets));
  };
  const SQLHDBC connection = handle.Get();
  if (connection == SQL_NULL_HANDLE) fail(SQL_HANDLE_ENV, environment.Get());
  // Neither matters to a driver that does not know it.
  const auto set = [&](SQLINTEGER attribute, std::uintptr_t value) {
    SQLSetConnectAttrW(connection, attribute, NumberAttribute(value), SQL_IS_UINTEGER);
  };
  set(SQL_ATTR_LOGIN_TIMEOUT, kPatienceSeconds);
  set(SQL_ATTR_ACCESS_MODE, SQL_MODE_READ_ONLY);
  std::u16string text = ToUtf16(connectionString);
  if (text.size() > 32000) throw Error(ErrorConnectionFailed, text::TooLongForOdbc);
  std::u16string completed(1024, u'\0');  // some drivers do not like to be told that nobody wants it
  SQLSMALLINT length = 0;
  const SQLRETURN result =
      SQLDriverConnectW(connection, nullptr, Wide(text), static_cast<SQLSMALLINT>(text.size()), Wide(completed),
                        static_cast<SQLSMALLINT>(completed.size()), &length, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(result)) fail(SQL_HANDLE_DBC, connection);
  open = true;
}

DriverConnection::Link::~Link() {
  if (open) SQLDisconnect(handle.Get());
}

void DriverConnection::RequireAlive() const {
  SQLUINTEGER dead = SQL_CD_FALSE;
  const SQLRETURN result = SQLGetConnectAttrW(Get(), SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
  pulse_->Beat();
  if (SQL_SUCCEEDED(result) && dead == SQL_CD_TRUE) {
    throw ConnectionLost(text::ConnectionGone);
  }
}

std::string DriverConnection::InfoText(SQLUSMALLINT kind) const {
  std::u16string buffer(256, u'\0');
  for (int attempt = 0; attempt < 2; ++attempt) {
    SQLSMALLINT bytes = 0;
    const auto size = static_cast<SQLSMALLINT>(buffer.size() * sizeof(char16_t));
    if (!SQL_SUCCEEDED(SQLGetInfoW(Get(), kind, buffer.data(), size, &bytes))) return {};
    if (bytes < size) return FromBytes(buffer, bytes);
    buffer.assign(16000, u'\0');  // lists of keywords are long
  }
  return FromBytes(buffer, static_cast<SQLINTEGER>((buffer.size() - 1) * sizeof(char16_t)));
}

std::uint32_t DriverConnection::InfoNumber(SQLUSMALLINT kind) const {
  SQLUINTEGER value = 0;
  return SQL_SUCCEEDED(SQLGetInfoW(Get(), kind, &value, sizeof value, nullptr)) ? value : 0;
}

std::uint16_t DriverConnection::InfoShort(SQLUSMALLINT kind) const {
  SQLUSMALLINT value = 0;
  return SQL_SUCCEEDED(SQLGetInfoW(Get(), kind, &value, sizeof value, nullptr)) ? value : std::uint16_t{0};
}

std::string DriverConnection::CurrentCatalog() const {
  std::u16string buffer(1024, u'\0');
  SQLINTEGER bytes = 0;
  const SQLRETURN result = SQLGetConnectAttrW(Get(), SQL_ATTR_CURRENT_CATALOG, buffer.data(),
                                              static_cast<SQLINTEGER>(buffer.size() * sizeof(char16_t)), &bytes);
  return SQL_SUCCEEDED(result) ? FromBytes(buffer, bytes) : std::string();
}

// --- Statement ---

Statement::Statement(const DriverConnection& connection) : connection_(connection), handle_(connection.Get()) {
  if (Get() != SQL_NULL_HANDLE) return;
  throw Error(ErrorConnectionFailed, Describe(Diagnose(SQL_HANDLE_DBC, connection.Get()), connection.GetSecrets()));
}

void Statement::Check(SQLRETURN result) const {
  connection_.GetPulse()->Beat();
  if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return;
  const std::vector<Diagnosis> all = Diagnose(SQL_HANDLE_STMT, Get());
  // The class of states in which there is no connection.
  const bool lost =
      std::ranges::any_of(all, [](const Diagnosis& diagnosis) { return diagnosis.state.starts_with("08"); });
  if (lost) throw ConnectionLost(Describe(all, connection_.GetSecrets()));
  std::int32_t number = ErrorConnectionFailed;
  if (!all.empty() && all.front().native != 0) number = all.front().native;
  const bool unsupported = std::ranges::any_of(all, [](const Diagnosis& diagnosis) {
    return std::ranges::find(kNotSupported, diagnosis.state) != std::end(kNotSupported);
  });
  if (unsupported) number = ErrorSchemaNotSupported;
  throw Error(number, Describe(all, connection_.GetSecrets()));
}

}  // namespace zrqrybld::odbc
