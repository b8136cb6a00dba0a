#include "visualization/VXUserPrompt.hpp"

#include <QtWidgets/QFileDialog>

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
} // namespace

QMessageBox::StandardButton VXUserPrompt::ask(QWidget* parent, const Question& question)
{
  if(askHandler())
    return askHandler()(question);
  QMessageBox box(question.icon, question.title, question.text, question.buttons, parent);
  box.setDefaultButton(question.defaultButton);
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

QString VXUserPrompt::getOpenFileName(QWidget* parent, const QString& title, const QString& filter)
{
  if(openFileHandler())
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
