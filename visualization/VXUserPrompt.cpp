#include "visualization/VXUserPrompt.hpp"

#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>

namespace
{
VXUserPrompt::AskHandler& askHandler()
{
  static VXUserPrompt::AskHandler handler;
  return handler;
}

VXUserPrompt::OpenFileHandler& openFileHandler()
{
  static VXUserPrompt::OpenFileHandler handler;
  return handler;
}

VXUserPrompt::SaveFileHandler& saveFileHandler()
{
  static VXUserPrompt::SaveFileHandler handler;
  return handler;
}

VXUserPrompt::TextHandler& textHandler()
{
  static VXUserPrompt::TextHandler handler;
  return handler;
}

VXUserPrompt::BoxHandler& boxHandler()
{
  static VXUserPrompt::BoxHandler handler;
  return handler;
}
} // namespace

QMessageBox::StandardButton VXUserPrompt::ask(QWidget* parent, const Question& question)
{
  if (askHandler())
    return askHandler()(question);
  QMessageBox box(question.icon, question.title, question.text, question.buttons, parent);
  box.setDefaultButton(question.defaultButton);
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

QString VXUserPrompt::getOpenFileName(QWidget* parent, const QString& title, const QString& filter)
{
  if (openFileHandler())
    return openFileHandler()(title, filter);
  return QFileDialog::getOpenFileName(parent, title, QString(), filter);
}

void VXUserPrompt::setAskHandler(AskHandler handler)
{
  askHandler() = std::move(handler);
}

void VXUserPrompt::setOpenFileHandler(OpenFileHandler handler)
{
  openFileHandler() = std::move(handler);
}

QString VXUserPrompt::getSaveFileName(QWidget* parent, const QString& title, const QString& filter)
{
  if (saveFileHandler())
    return saveFileHandler()(title, filter);
  return QFileDialog::getSaveFileName(parent, title, QString(), filter);
}

QString VXUserPrompt::getText(QWidget* parent, const QString& title, const QString& label,
                              const QString& text)
{
  if (textHandler())
    return textHandler()(title, label, text);
  bool ok = false;
  const QString answer = QInputDialog::getText(parent, title, label, QLineEdit::Normal, text, &ok);
  return ok ? answer : QString();
}

int VXUserPrompt::exec(QMessageBox& box)
{
  if (boxHandler())
    return boxHandler()(box);
  return box.exec();
}

void VXUserPrompt::setSaveFileHandler(SaveFileHandler handler)
{
  saveFileHandler() = std::move(handler);
}

void VXUserPrompt::setTextHandler(TextHandler handler)
{
  textHandler() = std::move(handler);
}

void VXUserPrompt::setBoxHandler(BoxHandler handler)
{
  boxHandler() = std::move(handler);
}
