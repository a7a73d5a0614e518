#include "windows/toolkit/qt/boxes/ask_boxes.h"

#include "core/diagnostics/message.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/messages.h"
#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QTreeView>

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// Empty when the bytes are no name that can be shown.
QString to_file_name(const String& bytes) {
    const QByteArray name(bytes.data(), static_cast<qsizetype>(bytes.size()));
    const QString shown = QFile::decodeName(name);
    return QFile::encodeName(shown) == name ? shown : QString();
}

/// Empty when the text is no name that can be written.
String to_bytes(const QString& name) {
    const QByteArray bytes = QFile::encodeName(name);
    if (QFile::decodeName(bytes) != name)
        return {};
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QStringList filters_of(const Vector<FileType>& types) {
    QStringList filters;
    for (const FileType& type : types) {
        const QString pattern =
            type.extension.empty() ? QStringLiteral("*") : "*." + to_qstring(view(type.extension));
        filters.push_back(to_qstring(view(type.label)) + " (" + pattern + ")");
    }
    return filters;
}

/// The directory as the system would name it after changing into it, so that one directory never
/// has two names.
QString directory_of(const QString& path) {
    const QString directory = QFileInfo(path).path();
    const QString real = QFileInfo(directory).canonicalFilePath();
    return real.isEmpty() || !QFileInfo::exists(real) ? QDir::cleanPath(directory) : real;
}

/// The names of a list as the box writes it, each in quotes; what stands between them counts too.
QStringList listed_names(const QString& text) {
    QStringList names;
    const QStringList parts = text.split(u'"');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i % 2 == 1)
            names += parts[i];
        else
            names += parts[i].split(u' ', Qt::SkipEmptyParts);
    }
    names.removeAll(QString());
    return names;
}

/// Reads the typed names itself where Qt's box would pass over some in silence, or tell of them in
/// a box of its own.
class FileBox : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    [[nodiscard]] QStringList chosen_files() const;
    void accept() override;

private:
    [[nodiscard]] QString typed() const {
        const auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        return field == nullptr ? QString() : field->text();
    }
    /// All that the field says; empty where it says nothing that Qt doesn't read rightly.
    [[nodiscard]] QStringList typed_files() const;

    QStringList found_;
};

QStringList FileBox::chosen_files() const {
    if (!found_.empty())
        return found_;
    // Where one file is asked for a name with a quote is taken as it stands.
    if (fileMode() == QFileDialog::AnyFile && typed().contains(u'"'))
        return {directory().absoluteFilePath(typed())};
    return selectedFiles();
}

QStringList FileBox::typed_files() const {
    const QString text = typed();
    if (fileMode() != QFileDialog::ExistingFiles || text.isEmpty())
        return {};
    const QStringList chosen = selectedFiles();
    const bool are_there =
        std::ranges::all_of(chosen, [](const QString& file) { return QFileInfo::exists(file); });
    if (!text.contains(u'"'))
        return are_there ? QStringList() : QStringList(text);
    QStringList names;
    for (const QString& file : chosen)
        names += u'"' + QFileInfo(file).fileName() + u'"';
    // Clicked on, not typed: a name may hold quotes.
    if (are_there && names.join(u' ') == text)
        return {};
    return listed_names(text);
}

void FileBox::accept() {
    String missing;
    QStringList found;
    for (const QString& name : typed_files()) {
        const QFileInfo file(directory(), name);
        if (file.exists() && !file.isDir()) {
            found += file.absoluteFilePath();
            continue;
        }
        if (!missing.empty())
            missing += '\n';
        missing += format_message(msg_typed_file_missing, to_text(name).c_str());
    }
    if (missing.empty() && found.empty()) {
        QFileDialog::accept();
        return;
    }
    const QPointer<FileBox> self(this);
    if (!missing.empty())
        xvt_dm_post_error("%s", missing.c_str());
    if (self.isNull() || found.empty())
        return;
    found_ = found;
    done(Accepted);
}

void take_files(const QStringList& files, Answer& answer) {
    for (const QString& file : files) {
        String name = to_bytes(QFileInfo(file).fileName());
        String directory = to_bytes(directory_of(file));
        if (name.empty() || directory.empty())
            continue;
        answer.directory = std::move(directory);
        answer.files.push_back(std::move(name));
    }
    if (answer.files.empty())
        answer.button = -1;
}

} // namespace

Answer ask_file(const Question& question) {
    const bool saves = question.kind == QuestionKind::file_save;
    const bool takes_many = question.kind == QuestionKind::files_open;
    const QPointer<FileBox> box = new FileBox(box_parent(), to_qstring(view(question.title)));
    box->setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                    QFileDialog::DontResolveSymlinks);
    box->setAcceptMode(saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    box->setFileMode(takes_many ? QFileDialog::ExistingFiles : QFileDialog::AnyFile);
    box->setNameFilters(filters_of(question.types));
    const QString directory = to_file_name(question.directory);
    box->setDirectory(QFileInfo(directory).isDir() ? directory : QDir::currentPath());
    if (const QString name = to_file_name(question.value); !name.isEmpty())
        box->selectFile(name);

    if (const auto* details = box->findChild<QTreeView*>(QStringLiteral("treeView"))) {
        details->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        details->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
    Answer answer = closed_answer(question);
    if (is_accepted(box.data(), {110, 30})) {
        answer.button = 0;
        take_files(box->chosen_files(), answer);
        if (!takes_many && !answer.files.empty())
            answer.value = std::move(answer.files.front());
        if (!takes_many)
            answer.files.clear();
    }
    delete box;
    return answer;
}

} // namespace pellux
