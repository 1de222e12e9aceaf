// Starts kztns lsp for names files, and says what to do where there is no kztns.
import { commands, ExtensionContext, window, workspace } from 'vscode';
import { LanguageClient } from 'vscode-languageclient/node';

let client: LanguageClient | undefined;

async function start(): Promise<void> {
  const command = workspace.getConfiguration('kztns').get<string>('path', 'kztns');
  client = new LanguageClient(
    'kztns',
    'kztns',
    { command, args: ['lsp'] },
    { documentSelector: [{ language: 'tnsnames' }] },
  );
  try {
    await client.start();
  } catch (error) {
    client = undefined;
    void window.showErrorMessage(
      `kztns cannot be started (${String(error)}): install it, or set kztns.path to where it is.`,
    );
  }
}

async function stop(): Promise<void> {
  const stopped = client;
  client = undefined;
  await stopped?.stop();
}

async function restart(): Promise<void> {
  await stop();
  await start();
}

export async function activate(context: ExtensionContext): Promise<void> {
  context.subscriptions.push(
    commands.registerCommand('kztns.restart', restart),
    workspace.onDidChangeConfiguration((change) => {
      if (change.affectsConfiguration('kztns.path')) void restart();
    }),
  );
  await start();
}

export function deactivate(): Promise<void> {
  return stop();
}
