#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QColorDialog>
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

VXUserPrompt::ChoiceHandler& choiceHandler()
{
  static VXUserPrompt::ChoiceHandler handler;
  return handler;
}

VXUserPrompt::ColorHandler& colorHandler()
{
  static VXUserPrompt::ColorHandler handler;
  return handler;
}

VXUserPrompt::DialogHandler& dialogHandler()
{
  static VXUserPrompt::DialogHandler handler;
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

VXUserPrompt::ChoiceAnswer VXUserPrompt::choose(QWidget* parent, const Choice& choice)
{
  if (choiceHandler())
    return choiceHandler()(choice);
  QMessageBox box(choice.icon, choice.title, choice.text, QMessageBox::NoButton, parent);
  QList<QAbstractButton*> buttons;
  for (qsizetype i = 0; i < choice.buttons.size(); ++i)
  {
    const auto role = i == choice.cancelButton ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
    buttons.append(box.addButton(choice.buttons[i], role));
  }
  if (choice.cancelButton >= 0 && choice.cancelButton < buttons.size())
    box.setEscapeButton(buttons[choice.cancelButton]);
  if (!choice.checkBoxText.isEmpty())
    box.setCheckBox(new QCheckBox(choice.checkBoxText, &box));
  exec(box);
  ChoiceAnswer answer;
  answer.button = static_cast<int>(buttons.indexOf(box.clickedButton()));
  answer.checkBoxChecked = box.checkBox() != nullptr && box.checkBox()->isChecked();
  return answer;
}

QColor VXUserPrompt::getColor(QWidget* parent, const QColor& initial, const QString& title)
{
  if (colorHandler())
    return colorHandler()(initial, title);
  return QColorDialog::getColor(initial, parent, title, QColorDialog::DontUseNativeDialog);
}

void VXUserPrompt::routeColorButton(KXColorButton* button, const QString& title)
{
  if (button == nullptr)
    return;
  button->setColorChooser([title](const QColor& current, QWidget* parent)
                          { return getColor(parent, current, title); });
}

int VXUserPrompt::execDialog(QDialog& dialog)
{
  if (dialogHandler())
    return dialogHandler()(dialog);
  return dialog.exec();
}

void VXUserPrompt::setChoiceHandler(ChoiceHandler handler)
{
  choiceHandler() = std::move(handler);
}

void VXUserPrompt::setColorHandler(ColorHandler handler)
{
  colorHandler() = std::move(handler);
}

void VXUserPrompt::setDialogHandler(DialogHandler handler)
{
  dialogHandler() = std::move(handler);
}

void VXUserPrompt::resetHandlers()
{
  setAskHandler({});
  setOpenFileHandler({});
  setSaveFileHandler({});
  setTextHandler({});
  setBoxHandler({});
  setChoiceHandler({});
  setColorHandler({});
  setDialogHandler({});
}
