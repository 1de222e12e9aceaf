// What the server says while one writes: keys and words that fit, and what a word means.
import {
  autocompletion,
  type Completion,
  type CompletionContext,
  type CompletionResult,
} from '@codemirror/autocomplete';
import { EditorView, hoverTooltip, type Tooltip } from '@codemirror/view';

import type { EngineClient } from '../engine/client';
import type { CompletionItem, Range } from '../engine/protocol';
import { textOfMarkdown } from './markdown';
import { changesOf, offsetOf, positionAt } from './positions';

function completionOf(item: CompletionItem): Completion {
  return {
    label: item.label,
    detail: item.detail,
    info: () => textOfMarkdown(item.documentation.value),
    apply(view: EditorView, _completion, from, to) {
      const { newText } = item.textEdit;
      view.dispatch({
        changes: { from, to, insert: newText },
        selection: { anchor: from + newText.length },
        userEvent: 'input.complete',
      });
    },
  };
}

async function complete(
  client: EngineClient,
  context: CompletionContext,
): Promise<CompletionResult | null> {
  const typed = context.matchBefore(/[(=]\s?|[\w.]+/);
  if (typed === null && !context.explicit) return null;
  const text = context.state.doc;
  const version = client.textVersion;
  const items = await client.ask<CompletionItem[]>('textDocument/completion', {
    position: positionAt(text, context.pos),
  });
  const first = items[0];
  if (first === undefined || version !== client.textVersion) return null;
  const [change] = changesOf(text, [first.textEdit]);
  return { from: change!.from, options: items.map(completionOf), validFor: /^\w*$/ };
}

async function explain(
  client: EngineClient,
  view: EditorView,
  at: number,
): Promise<Tooltip | null> {
  const text = view.state.doc;
  const hover = await client.ask<{ contents: { value: string }; range: Range } | null>(
    'textDocument/hover',
    { position: positionAt(text, at) },
  );
  if (hover === null || view.state.doc !== text) return null;
  const dom = document.createElement('div');
  dom.className = 'hover';
  dom.append(textOfMarkdown(hover.contents.value));
  return {
    pos: offsetOf(text, hover.range.start),
    end: offsetOf(text, hover.range.end),
    above: true,
    create: () => ({ dom }),
  };
}

export function assist(client: EngineClient) {
  return [
    autocompletion({
      override: [(context) => complete(client, context).catch(() => null)],
      icons: false,
    }),
    hoverTooltip((view, at) => explain(client, view, at).catch(() => null), { hoverTime: 400 }),
  ];
}
