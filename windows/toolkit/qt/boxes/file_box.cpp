#include "windows/toolkit/qt/boxes/file_box.h"

#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QTreeView>

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

/// The files that are chosen. A typed name with a quote is taken as it stands where one file is
/// asked for: the box reads a list of quoted names in it.
QStringList chosen_files(const QFileDialog& box) {
    const auto* name = box.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (box.fileMode() == QFileDialog::AnyFile && name != nullptr && name->text().contains(u'"'))
        return {box.directory().absoluteFilePath(name->text())};
    return box.selectedFiles();
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
    const QPointer<QFileDialog> box =
        new QFileDialog(box_parent(), to_qstring(view(question.title)));
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
    const QFontMetrics metrics = box->fontMetrics();
    box->resize(QSize(metrics.averageCharWidth() * 110, metrics.height() * 30)
                    .boundedTo(box->screen()->availableSize()));

    Answer answer = closed_answer(question);
    const bool is_accepted = box->exec() == QDialog::Accepted;
    if (box == nullptr)
        return answer;
    if (is_accepted) {
        answer.button = 0;
        take_files(chosen_files(*box), answer);
        if (!takes_many && !answer.files.empty())
            answer.value = std::move(answer.files.front());
        if (!takes_many)
            answer.files.clear();
    }
    delete box;
    return answer;
}

} // namespace pellux
